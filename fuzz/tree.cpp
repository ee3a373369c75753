// The tree: what loads can be expanded and put back, and is saved with the same nodes.

#include "platform/streams/stream.h"
#include "support/fuzz.h"
#include "tree/Utarbrevyn.h"

namespace {

std::string Saved(vyn::TTreeVyn& tree) {
    vyn::TMemoryStream stream;
    tree.SaveToStream(&stream);
    return std::string(stream.Bytes());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vyn::TViewStream stream(fuzzing::Bytes(data, size));
    vyn::TTreeVyn tree;
    const bool loaded = fuzzing::Succeeds([&] { tree.LoadFromStream(&stream); });
    const int count = tree.Count();
    std::string saved;
    // What was read before an error stays, and works like any other tree.
    if (!fuzzing::Succeeds([&] { saved = Saved(tree); })) return 0;
    if (fuzzing::Succeeds([&] { tree.SetRealTree(false); })) {
        fuzzing::Require(tree.Count() >= count, "expanding takes no node away");
        for (int i = 0; i < tree.Count(); ++i) tree.Childs(tree.GetIdxNodeArbre(i).IDNode, false);
        tree.SetRealTree(true);
    }
    fuzzing::Require(tree.RealTree(), "a switch that fails leaves the mode");
    fuzzing::Require(tree.Count() == count, "the real tree comes back with its nodes");
    fuzzing::Require(Saved(tree) == saved, "the real tree comes back as it was");
    if (!loaded) return 0;
    vyn::TViewStream savedStream(saved);
    vyn::TTreeVyn again;
    if (!fuzzing::Succeeds([&] { again.LoadFromStream(&savedStream); })) return 0;
    fuzzing::Require(Saved(again) == saved, "a saved tree loads to the same bytes");
    return 0;
}
