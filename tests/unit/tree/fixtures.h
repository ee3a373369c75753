#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/streams/reader.h"
#include "platform/streams/stream.h"
#include "platform/streams/writer.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "tree/Utarbrevyn.h"

// Trees for the tests, and what they tell.
namespace tree_fixtures {

using namespace vyn;

// A tree whose inner operations can be called, and whose checks can be switched off.
class TOpenTree : public TTreeVyn {
  public:
    bool Checks = true;
    using TTreeVyn::Childs;
    using TTreeVyn::DoDelete;
    using TTreeVyn::ExpandAccesDirecte;
    using TTreeVyn::InternalDoAdd;
    void InternalCheckNode(const TNodeArbre& node) const override {
        if (Checks) TTreeVyn::InternalCheckNode(node);
    }
};

// Writes down what it hears, into a list that several may share.
class TListeningLink : public TCustomTreeVynLink {
  public:
    TListeningLink(AnsiString name, std::vector<AnsiString>& heard)
        : TCustomTreeVynLink(nullptr), name_(std::move(name)), heard_(heard) {}
    void NotifyChange(TTreeVynNodeCange kind, int IDNode) override {
        static const char* const kinds[] = {"BeforeAdd",    "AfterAdd",    "BeforeDel", "AfterDel",
                                            "BeforeModify", "AfterModify", "Changed"};
        heard_.push_back(name_ + kinds[static_cast<int>(kind)] + " " + IntToStr(IDNode));
        if (OnHear) OnHear(kind, IDNode);
    }
    std::function<void(TTreeVynNodeCange, int)> OnHear;

  private:
    AnsiString name_;
    std::vector<AnsiString>& heard_;
};

constexpr int kFolder = 4;
constexpr int kTransparent = 14;

inline TNodeArbre Node(int number, int parent, int child, int type = kFolder, int component = 0, AnsiString name = "") {
    return {number, parent, child, component, type, name.empty() ? "N" + IntToStr(number) : name};
}
inline TNodeArbre Shortcut(int number, int parent, int child, int target) {
    return Node(number, parent, child, tnAccesDirecte, target);
}
inline void Fill(TTreeVyn& tree, const std::vector<TNodeArbre>& nodes) {
    for (const TNodeArbre& node : nodes) tree.Add(node);
}
inline std::vector<int> Numbers(const TArrayDeNodes& nodes) {
    std::vector<int> numbers;
    for (const TNodeArbre& node : nodes) numbers.push_back(node.IDNode);
    return numbers;
}
inline std::vector<int> Numbers(const TTreeVyn& tree) {
    std::vector<int> numbers;
    for (int i = 0; i < tree.Count(); ++i) numbers.push_back(tree.GetIdxNodeArbre(i).IDNode);
    return numbers;
}
using List = std::vector<int>;

// The text after the prefix that every error of a tree has; the class is checked.
inline AnsiString ErrorOf(const std::function<void()>& action) {
    const AnsiString prefix = "Error in TTreeVyn:\n";
    try {
        action();
    } catch (const ETreeVyn& error) {
        if (AnsiString(error.ClassName()) != "ETreeVyn" || error.Message().rfind(prefix, 0) != 0)
            return "another prefix: " + error.Message();
        return error.Message().substr(prefix.size());
    } catch (const Exception& error) {
        return AnsiString(error.ClassName()) + ": " + error.Message();
    }
    return "no error";
}
inline std::string Stored(TTreeVyn& tree) {
    TMemoryStream stream;
    tree.SaveToStream(&stream);
    return std::string(stream.Bytes());
}
inline void Load(TTreeVyn& tree, std::string_view bytes) {
    TMemoryStream stream(bytes);
    tree.LoadFromStream(&stream);
}

}  // namespace tree_fixtures
