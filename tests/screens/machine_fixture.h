// A panel on the card simulator for the machine and status screens: the commands the card
// received, the machine's state raised on the card, forms run while they stand, the warning of a
// refusal read and answered, and numbers typed on the pad.
#pragma once

#include <QLabel>
#include <string>
#include <vector>

#include "controller/cardsim/card_simulator.h"
#include "screens/pad_forms.h"
#include "screens/warning_form.h"
#include "tests/screens/panel_fixture.h"

namespace kirvana {

inline const std::string RunningOrFeedhold = "\n\nWhile Machine Is Running Or In Feedhold !";

class MachineFormsTest : public PanelTest {
protected:
    void SetUp() override {
        PanelTest::SetUp();
        ASSERT_TRUE(sim_.Start(0));
        CardAt(sim_.Port());
    }
    void TearDown() override {
        PanelTest::TearDown();
        sim_.Stop();
    }
    // The panel started and its first ticks done; what the card received so far is forgotten.
    void StartPanel() {
        ASSERT_EQ(Start(), 0);
        WaitFor([&] { return P().PollTimer().isActive(); });
        Spin(150);
        sim_.ClearReceived();
    }
    // The commands the card took since the last call: assignments and feed overrides, without
    // the poll's queries and its acknowledgements of the card's requests.
    std::vector<std::string> Commands() {
        std::vector<std::string> commands;
        for (const std::string& token : sim_.Received()) {
            bool assignment = token.find('=') != std::string::npos && !token.starts_with("P1022=");
            bool feed = token.size() > 1 && token[0] == '%';
            if (assignment || feed) commands.push_back(token);
        }
        sim_.ClearReceived();
        return commands;
    }
    static bool WaitFor(const std::function<bool()>& condition, int ms = 4000) {
        QElapsedTimer clock;
        clock.start();
        while (!condition()) {
            if (clock.elapsed() > ms) return false;
            Spin(10);
        }
        return true;
    }
    // The machine state as the card reports it in P1022, seen by the panel at its next tick.
    void CardStatus(std::int64_t bits) {
        sim_.SetVariable("P1022", static_cast<double>(bits));
        Spin(200);
        ASSERT_EQ(P().State().Running, (bits & 16384) != 0);
        ASSERT_EQ(P().State().InFeedhold, (bits & 2048) != 0);
        ASSERT_EQ(P().State().InCycle, (bits & 8192) != 0);
        sim_.ClearReceived();
    }
    // Runs `act` on the form that `open` brings up, and closes the form after; false when no form came.
    static bool WithForm(const std::function<void()>& open, const std::function<void(QWidget*)>& act) {
        bool ran = false;
        WhenModal([&](QWidget* modal) {
            act(modal);
            ran = true;
            if (modal->isVisible()) modal->close();
        });
        open();
        return ran;
    }
    // The name of the form that `open` brings up.
    static std::string FormOpenedBy(const std::function<void()>& open) {
        std::string name = "none";
        WithForm(open, [&](QWidget* modal) { name = modal->objectName().toStdString(); });
        return name;
    }
    // Presses a button and gives the text of the warning it raised, answered with OK.
    static std::string WarningOf(QAbstractButton* button) {
        std::string text = "no warning";
        WhenModal(
            [&](QWidget* modal) {
                auto* form = qobject_cast<QDialog*>(modal);
                if (modal->objectName() != "WarningForm" || !form) return;
                text = static_cast<WarningForm*>(form)->WarningLabel()->text().toStdString();
                static_cast<WarningForm*>(form)->WarningButton(0)->click();
            },
            2000);
        button->click();
        return text;
    }
    // Presses a value box and types `digits` on the number pad, then OK.
    static void TypeInto(QAbstractButton* box, const std::string& digits) {
        WhenModal([&](QWidget* modal) {
            auto* pad = static_cast<PadForm*>(modal);
            for (char c : digits) pad->SendKey(c);
            pad->OkButton()->click();
        });
        box->click();
    }

    CardSimulator sim_;
};

// A control of a form by its object name.
template <class T = QPushButton>
T* Child(QWidget* form, const char* name) {
    T* child = form->findChild<T*>(name);
    EXPECT_NE(child, nullptr) << name;
    return child;
}

inline std::string TextOf(QWidget* form, const char* name) {
    auto* label = form->findChild<QLabel*>(name);
    if (label) return label->text().toStdString();
    auto* button = form->findChild<QAbstractButton*>(name);
    return button ? button->text().toStdString() : "(no " + std::string(name) + ")";
}

}  // namespace kirvana
