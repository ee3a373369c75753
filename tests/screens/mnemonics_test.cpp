// Each letter that Alt goes with does one thing in a screen.
#include "platform/controls/bit_buttons.h"
#include "platform/controls/buttons.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/groups.h"
#include "platform/controls/labels.h"
#include "platform/controls/menus.h"
#include "platform/controls/pages.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/tool_bars.h"
#include "programs/host/search_form.h"
#include "screens/screen.h"

namespace vyn::screens {

namespace {

// Who answers Alt and a letter.
struct Answer {
    char Letter;
    AnsiString Name;  // for people
    // The page that has to be shown for it; null: none.
    const TTabSheet* Page;
};

char LetterOf(const TControl& control) {
    if (const auto* label = ObjectCast<TCustomLabel>(&control))
        return label->ShowAccelChar() && label->FocusControl() ? MnemonicOf(label->Caption()) : '\0';
    if (const auto* label = ObjectCast<TCustomStaticText>(&control))
        return label->ShowAccelChar() && label->FocusControl() ? MnemonicOf(label->Caption()) : '\0';
    const bool answers = ObjectCast<TButtonControl>(&control) || ObjectCast<TCustomGroupBox>(&control) ||
                         ObjectCast<TSpeedButton>(&control) || ObjectCast<TToolButton>(&control) ||
                         ObjectCast<TTabSheet>(&control);
    return answers ? MnemonicOf(control.Caption()) : '\0';
}

void Collect(const TWinControl& parent, const TTabSheet* page, std::vector<Answer>& answers) {
    for (int i = 0; i < parent.ControlCount(); ++i) {
        const TControl& control = *parent.Controls(i);
        if (const char letter = LetterOf(control))
            answers.push_back({letter, control.TComponent::Name() + " \"" + control.Caption() + "\"", page});
        const auto* sheet = ObjectCast<TTabSheet>(&control);
        if (const auto* inner = ObjectCast<TWinControl>(&control)) Collect(*inner, sheet ? sheet : page, answers);
    }
}

void Collect(const TMenuItem& menu, std::vector<Answer>& answers) {
    for (int i = 0; i < menu.Count(); ++i)
        if (const char letter = MnemonicOf(menu.Items(i)->Caption()))
            answers.push_back({letter, "menu \"" + menu.Items(i)->Caption() + "\"", nullptr});
}

// The letters that several answer to, and who they are.
std::string Collisions(const std::vector<Answer>& answers) {
    AnsiString told;
    for (size_t i = 0; i < answers.size(); ++i)
        for (size_t j = i + 1; j < answers.size(); ++j) {
            const Answer& one = answers[i];
            const Answer& other = answers[j];
            // Pages of which one at a time is shown may share theirs.
            if (one.Letter != other.Letter || (one.Page && other.Page && one.Page != other.Page)) continue;
            told += AnsiString(1, one.Letter) + ": " + one.Name + " and " + other.Name + "\n";
        }
    return AnsiToUtf8(told);
}

std::string CollisionsOf(const TCustomForm& form) {
    std::vector<Answer> answers;
    Collect(form, nullptr, answers);
    std::string told;
    if (form.Menu()) {
        Collect(*form.Menu()->Items(), answers);
        for (int i = 0; i < form.Menu()->Items()->Count(); ++i) {
            std::vector<Answer> inner;
            Collect(*form.Menu()->Items()->Items(i), inner);
            told += Collisions(inner);
        }
    }
    return Collisions(answers) + told;
}

class Mnemonics : public ScreenTest {};

}  // namespace

TEST_F(Mnemonics, AreUniqueInEveryScreenOfTheSample) {
    constexpr int kFirstVirtual = 100001;
    constexpr int kMostOfEither = 40;
    TTreeVyn& tree = session->App().Tree();
    int screens = 0;
    for (int i = 0; i < 2 * kMostOfEither; ++i) {
        const int id = i < kMostOfEither ? i + 1 : kFirstVirtual + i - kMostOfEither;
        if (!tree.FindIDNode(id) || tree.GetIDNode(id).IDComponent < 1) continue;
        if (tree.GetIDNode(id).NodeType == NodeTypeShortcut) continue;
        if (session->GuardOf(id) > 0) continue;  // a list like the others, which opens after a password alone
        auto* screen = ObjectCast<TCustomForm>(&session->OpenUnguarded(id));
        if (!screen) continue;
        ++screens;
        EXPECT_EQ(CollisionsOf(*screen), "") << "node " << id << " " << AnsiToUtf8(tree.GetIDNode(id).Name);
    }
    EXPECT_GT(screens, 20);
}

TEST_F(Mnemonics, AreUniqueInTheSearchScreen) {
    const std::unique_ptr<TCustomForm> screen(CreateFormNormal(&TFRMCerca::StaticClass(), nullptr));
    EXPECT_EQ(CollisionsOf(*screen), "");
}

TEST_F(Mnemonics, TheTwoThatCollideAreNamed) {
    TForm screen(nullptr);
    auto* box = new TCheckBox(&screen);
    box->SetName("Actiu");
    box->SetCaption("&Actiu");
    box->SetParent(&screen);
    auto* button = new TButton(&screen);
    button->SetName("Actualitzar");
    button->SetCaption("&Actualitza");
    button->SetParent(&screen);
    EXPECT_EQ(CollisionsOf(screen), "A: Actiu \"&Actiu\" and Actualitzar \"&Actualitza\"\n");
}

}  // namespace vyn::screens
