// Resource trees: what parses is written back to the bytes that were read; laid over itself it does not change, and
// beside itself it holds no difference.

#include "persistence/Uvynfmr.h"
#include "platform/streams/text_form.h"
#include "support/fuzz.h"

namespace {

std::string BytesOf(const vyn::TRecursosObjecte& tree) {
    vyn::TMemoryStream stream;
    vyn::RECURSOSObjecteAStreamBinary(tree, stream);
    return std::string(stream.Bytes());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes = fuzzing::Bytes(data, size);
    vyn::TViewStream stream(bytes);
    vyn::PRecursosObjecte tree;
    if (!fuzzing::Succeeds([&] { tree = vyn::StreamObjecteBinaryARECURSOS(stream); })) return 0;
    fuzzing::Require(tree != nullptr, "what parses has a tree");
    const std::string written = BytesOf(*tree);
    const std::string_view taken = bytes.substr(0, static_cast<size_t>(stream.Position()));
    fuzzing::Require(written.size() <= taken.size(), "a tree takes no more bytes than it was read from");
    // Places among siblings may be stored longer than needed; where there are none, each byte comes back.
    if (written.size() == taken.size()) fuzzing::Require(written == taken, "a tree gives back the bytes as they were");
    // The forms' own reader, which shares nothing with the trees, sees the same form in both.
    std::string text;
    vyn::TViewStream takenStream(taken);
    if (fuzzing::Succeeds([&] { text = vyn::BinaryToText(takenStream); })) {
        vyn::TViewStream writtenAsForm(written);
        fuzzing::Require(vyn::BinaryToText(writtenAsForm) == text, "a tree loses nothing of the form");
    }
    vyn::TViewStream writtenStream(written);
    vyn::PRecursosObjecte again = vyn::StreamObjecteBinaryARECURSOS(writtenStream);
    fuzzing::Require(BytesOf(*again) == written, "a tree gives back the bytes that it was read from");
    vyn::PRecursosObjecte copy = vyn::DuplicaObjectes(tree.get());
    fuzzing::Require(BytesOf(*copy) == written, "a copy holds the same");
    // A hostile object may have two properties of one name: those have no difference, but an error.
    fuzzing::Succeeds([&] {
        vyn::PRecursosObjecte differences = vyn::ExtreuObjectes(tree.get(), copy.get(), false);
        if (differences) vyn::CompletaDiferencies(*differences, *copy, *tree, *tree);
    });
    fuzzing::Succeeds([&] {
        vyn::AfegeixObjectes(copy.get(), tree.get(), false);
        BytesOf(*copy);
    });
    vyn::ExisteixObjecte(tree.get(), "Label1", vyn::TotElArbre);
    vyn::ExisteixClasseObjecte(tree.get(), "TLabel", vyn::TotElArbre);
    return 0;
}
