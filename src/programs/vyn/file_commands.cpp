#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <random>

#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"
#include "programs/host/node_forms.h"
#include "programs/tools/dump.h"
#include "programs/tools/source_folder.h"
#include "programs/vyn/commands.h"

namespace vyn {

namespace commands_detail {

constexpr uint64_t kQuietMilliseconds = 1000;

uint64_t Milliseconds() {
    return static_cast<uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
            .count());
}

void PrintRemarks(const SourceRemarks& remarks) {
    for (const SourceRemark& remark : remarks) std::cerr << remark.Sentence() << '\n';
}

// Raised when a source folder has errors, which are printed by then.
[[noreturn]] void RaiseErrorsFound(size_t count, const std::string& folder) {
    throw Exception(Utf8ToAnsiLossy(folder) + ": " + std::to_string(count) + (count == 1 ? " error" : " errors") +
                    "; nothing was written");
}

}  // namespace commands_detail

void Complain(const std::string& utf8Text) { std::cerr << "vyn: " << utf8Text << '\n'; }

Progress::Progress(std::string what)
    : what_(std::move(what)), startedAt_(commands_detail::Milliseconds()), visible_(isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
    if (shown_ >= 0) std::cerr << "\r\033[K" << std::flush;
}

void Progress::operator()(double part) {
    if (!visible_ || commands_detail::Milliseconds() - startedAt_ < commands_detail::kQuietMilliseconds) return;
    const int percent = static_cast<int>(part * 100);
    if (percent == shown_) return;
    shown_ = percent;
    std::cerr << '\r' << what_ << " " << percent << " %" << std::flush;
}

int BuildCommand(const std::string& folder, const std::string& output) {
    TMemoryStream application;
    SourceRemarks errors;
    {
        Progress progress("building");
        errors = BuildSourceFolder(folder, application, [&](double part) { progress(part); });
    }
    commands_detail::PrintRemarks(errors);
    if (!errors.empty()) commands_detail::RaiseErrorsFound(errors.size(), folder);
    application.SaveToFile(Utf8ToAnsi(output));
    return 0;
}

int ExportCommand(const std::string& file, const std::string& folder) {
    TFileStream application(Utf8ToAnsi(file), fmOpenRead);
    SourceRemarks remarks;
    {
        Progress progress("exporting");
        remarks = ExportSourceFolder(application, folder, [&](double part) { progress(part); });
    }
    commands_detail::PrintRemarks(remarks);
    return 0;
}

int DumpCommand(const std::string& file, bool json) {
    TFileStream stream(Utf8ToAnsi(file), fmOpenRead);
    const Json dump = DumpStream(stream);
    std::cout << (json ? dump.dump(2) + "\n" : DumpText(dump)) << std::flush;
    if (!std::cout) throw EWriteError("Standard output cannot be written");
    return 0;
}

int PasswordCommand() {
    std::string password;
    if (isatty(STDIN_FILENO)) std::cerr << "Password: " << std::flush;
    std::getline(std::cin, password);
    std::random_device random;
    std::string salt;
    static const char digits[] = "0123456789abcdef";
    for (int i = 0; i < 32; ++i) salt += digits[random() % 16];
    std::cout << TFRMPassword::HashOf(Utf8ToAnsi(password), salt) << '\n';
    return 0;
}

std::unique_ptr<TStream> OpenApplicationStream(const std::string& file) {
    std::error_code ignored;
    if (!std::filesystem::is_directory(file, ignored))
        return std::make_unique<TFileStream>(Utf8ToAnsi(file), fmOpenRead);
    auto built = std::make_unique<TMemoryStream>();
    const SourceRemarks errors = BuildSourceFolder(file, *built);
    commands_detail::PrintRemarks(errors);
    if (!errors.empty()) commands_detail::RaiseErrorsFound(errors.size(), file);
    built->SetPosition(0);
    built->SetDescription(Utf8ToAnsiLossy(file));
    return built;
}

}  // namespace vyn
