// The panel fixture with helpers for the program screens: ProgramForm opened as F1 opens it, the
// warning a press raises, the pad answered, and pictures of the panel for a person to look at.
#pragma once

#include <QComboBox>
#include <QDir>

#include "screens/pad_forms.h"
#include "screens/panel_capture.h"
#include "screens/panel_style.h"
#include "screens/program_form.h"
#include "screens/warning_form.h"
#include "tests/screens/panel_fixture.h"

namespace kirvana {

class ProgramFormsTest : public PanelTest {
protected:
    // Opens ProgramForm as F1 does and runs `act` on it; the form is closed afterwards if it stands.
    void OnProgramForm(const std::function<void(ProgramForm&)>& act) {
        bool ran = false;
        WhenModal([&](QWidget* modal) {
            auto* form = dynamic_cast<ProgramForm*>(modal);
            ran = form != nullptr;
            if (form) act(*form);
            if (modal->isVisible()) modal->close();
        });
        Key(key::F1);
        EXPECT_TRUE(ran) << "ProgramForm did not come up";
    }

    // The text of the warning that `press` raises (its trailing line ends left off), answered
    // with button `button` (from 1; 0 closes it); "" when none came up while `press` ran.
    static std::string WarningOf(const std::function<void()>& press, int button = 0) {
        auto alive = std::make_shared<bool>(true);
        auto text = std::make_shared<std::string>();
        auto poll = std::make_shared<std::function<void()>>();
        std::weak_ptr<std::function<void()>> self = poll;
        *poll = [alive, text, self, button] {
            if (!*alive) return;
            auto* warning = dynamic_cast<WarningForm*>(QApplication::activeModalWidget());
            if (warning && warning->isVisible()) {
                *text = S(warning->WarningLabel()->text());
                while (!text->empty() && text->back() == '\n') text->pop_back();
                if (button > 0)
                    warning->WarningButton(button - 1)->click();
                else
                    warning->close();
                return;
            }
            if (auto next = self.lock()) QTimer::singleShot(10, [next] { (*next)(); });
        };
        QTimer::singleShot(0, [poll] { (*poll)(); });
        press();
        *alive = false;
        return *text;
    }

    // The next pad that comes up is given `text` and closed with OK.
    static void AnswerPad(const std::string& text) {
        WhenModal([text](QWidget* modal) {
            auto* pad = dynamic_cast<PadForm*>(modal);
            if (!pad) return;
            pad->DeleteButton(1)->click();
            for (char c : text) pad->SendKey(c);
            pad->OkButton()->click();
        });
    }

    static std::vector<std::string> Items(QComboBox* combo) {
        std::vector<std::string> items;
        for (int i = 0; i < combo->count(); ++i) items.push_back(S(combo->itemText(i)));
        return items;
    }

    // The whole panel with the form standing over FrontEnd, into the screenshots folder.
    void SavePanel(const std::string& name) { SavePanelShot(P(), name); }
};

}  // namespace kirvana
