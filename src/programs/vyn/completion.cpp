#include <iostream>

#include "platform/text/exceptions.h"
#include "programs/vyn/commands.h"

namespace vyn {

namespace completion_detail {

constexpr char kBash[] = R"(# bash completion for vyn: source <(vyn completion bash)
_vyn() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} subcommand=${COMP_WORDS[1]}
    local subcommands="run demo shot build export dump sql eval import password completion"
    if [ "$COMP_CWORD" -eq 1 ]; then
        COMPREPLY=($(compgen -W "$subcommands --help --version" -- "$current"))
        return
    fi
    case $previous in
        -o | --output | --values) COMPREPLY=($(compgen -f -- "$current")); return ;;
        --node | --size | --database) return ;;
        completion) COMPREPLY=($(compgen -W "bash" -- "$current")); return ;;
    esac
    local options="--help"
    case $subcommand in
        run) options="--design --node --values --database --help" ;;
        demo) options="--node --values --database --help" ;;
        shot) options="--output --size --search --do --at-once --part --values --database --help" ;;
        build | export) options="--output --help" ;;
        dump) options="--json --help" ;;
        import) options="--output --force --damaged --password --json --help" ;;
        sql) options="--json --values --database --help" ;;
    esac
    case $current in
        -*) COMPREPLY=($(compgen -W "$options" -- "$current")) ;;
        *) COMPREPLY=($(compgen -f -- "$current")) ;;
    esac
}
complete -o filenames -F _vyn vyn
)";

}  // namespace completion_detail

int CompletionCommand(const std::string& shell) {
    if (shell != "bash") throw Exception("There is a completion for bash only");
    std::cout << completion_detail::kBash;
    return 0;
}

}  // namespace vyn
