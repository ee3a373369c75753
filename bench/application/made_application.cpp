#include "application/made_application.h"

#include "platform/streams/writer.h"

namespace application_bench {

using namespace vyn;

std::string StoredForm(int number) {
    TMemoryStream stream;
    TWriter writer(stream);
    const std::string text = std::to_string(number);
    writer.WriteSignature();
    writer.WriteName("TForm");
    writer.WriteName("Form" + text);
    writer.WriteName("Caption");
    writer.WriteString("Customers " + text);
    writer.WriteName("Width");
    writer.WriteInteger(640);
    writer.WriteName("");
    writer.WriteName("TLabel");
    writer.WriteName("Label1");
    writer.WriteName("Caption");
    writer.WriteString("Name");
    writer.WriteName("");
    writer.WriteListEnd();
    writer.WriteListEnd();
    writer.Flush();
    return std::string(stream.Bytes());
}

void MakeTree(TTreeVyn& tree, int nodes, int shortcuts) {
    constexpr int kChildren = 10;
    constexpr int kOrdinary = 4;  // any type that shows
    // Node 1 has children 2 to 11, and so on: node n stands below (n - 2) / 10 + 1.
    const int ordinary = nodes - shortcuts;
    for (int number = 1; number <= ordinary; ++number) {
        TNodeArbre node;
        node.IDNode = number;
        node.IDParent = number == 1 ? 0 : (number - 2) / kChildren + 1;
        node.Child = (number - 2) % kChildren + 1;
        node.IDComponent = number;
        node.NodeType = kOrdinary;
        node.Name = "Node " + std::to_string(number);
        tree.Add(node);
    }
    // Targets whose branches are two levels deep and hold 111 nodes, the same whatever the tree's size; the shortcuts
    // stand at the end of the tree, in no branch that another one copies.
    const int first_target = std::max(2, ordinary / 100);
    for (int number = ordinary + 1; number <= nodes; ++number) {
        TNodeArbre node;
        node.IDNode = number;
        node.IDParent = 1;
        node.Child = number;
        node.IDComponent = first_target - 1 - (number - ordinary) % (first_target / 2);
        node.NodeType = tnAccesDirecte;
        node.Name = "Shortcut " + std::to_string(number);
        tree.Add(node);
    }
}

std::unique_ptr<TVynApp> MakeApplication(int parts) {
    constexpr int kWhole = 8;
    auto app = std::make_unique<TVynApp>(nullptr);
    MakeTree(app->Tree(), FullNodes * parts / kWhole, 0);
    for (int number = 1; number <= FullComponents * parts / kWhole; ++number) {
        TMemoryStream stream(StoredForm(number));
        app->Components().InsertComponent(TComponentVyn{number, 4, "Component " + std::to_string(number)}, stream);
    }
    for (int number = 1; number <= FullResources * parts / kWhole; ++number) {
        TMemoryStream stream(StoredForm(number));
        app->Recursos().InsertTRecursos(TRecursos{number, number / 2, "Resource " + std::to_string(number), 1}, stream);
    }
    return app;
}

}  // namespace application_bench
