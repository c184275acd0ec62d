// A few thousand random presses and keys on whatever form stands in front: no crash, no hang.
#include <QCheckBox>
#include <random>

#include "screens/warning_form.h"
#include "tests/screens/panel_fixture.h"

using namespace kirvana;

namespace {

const std::vector<Qt::Key> MonkeyKeys = {
    Qt::Key_F1,   Qt::Key_F2,   Qt::Key_F3,    Qt::Key_F4,     Qt::Key_F5,     Qt::Key_F6,        Qt::Key_F7,
    Qt::Key_F8,   Qt::Key_F9,   Qt::Key_F10,   Qt::Key_F11,    Qt::Key_F12,    Qt::Key_A,         Qt::Key_C,
    Qt::Key_D,    Qt::Key_F,    Qt::Key_K,     Qt::Key_L,      Qt::Key_N,      Qt::Key_O,         Qt::Key_P,
    Qt::Key_R,    Qt::Key_S,    Qt::Key_T,     Qt::Key_U,      Qt::Key_X,      Qt::Key_Y,         Qt::Key_Z,
    Qt::Key_1,    Qt::Key_2,    Qt::Key_Minus, Qt::Key_Period, Qt::Key_Left,   Qt::Key_Right,     Qt::Key_Up,
    Qt::Key_Down, Qt::Key_Home, Qt::Key_End,   Qt::Key_Return, Qt::Key_Escape, Qt::Key_Backspace, Qt::Key_Delete,
    Qt::Key_Space};

}  // namespace

TEST_F(PanelTest, MonkeyOnEveryFormNeitherCrashesNorHangs) {
    Write("Data/Keypad.cfg", "Y, M, ONE, M10=1, M10=0\nY, L, TWO, M11=1, M11=0\n******\n");
    ASSERT_EQ(Start(), 0);
    Select(2, "COVER02");
    Select(1, "PLATE01");
    constexpr int Actions = 3000;
    std::mt19937 random(20261124);
    int done = 0;
    int restarts = 0;
    std::vector<std::string> names = P().Forms().Names();
    QTimer monkey;
    monkey.setInterval(1);
    // Each press is posted as an event of its own: a press that opens a modal form waits inside
    // it, and the next presses arrive there (a timer never fires inside its own handler).
    auto act = [&] {
        // Nothing while a new panel is starting.
        if (!panel_ || !P().Front() || P().Ended()) return;
        // At the end the forms close one by one, so that every wait inside them returns. A question
        // is answered "&NO" (closing it would cancel, and a form that asks before it closes, such
        // as the editor with changes, would stay for ever).
        if (done >= Actions) {
            QWidget* modal = QApplication::activeModalWidget();
            auto* warning = dynamic_cast<WarningForm*>(modal);
            QPushButton* no = warning ? warning->WarningButton(1) : nullptr;
            if (no && no->isVisible())
                no->click();
            else if (modal)
                modal->close();
            return;
        }
        ++done;
        if (std::getenv("MONKEY_TRACE"))
            std::fprintf(
                stderr, "monkey %d %s\n", done,
                QApplication::activeModalWidget() ? qPrintable(QApplication::activeModalWidget()->objectName()) : "-");
        QWidget* target = QApplication::activeModalWidget();
        if (!target) target = P().Front();
        int choice = static_cast<int>(random() % 100);
        if (choice < 5) {
            P().OpenForm(names[random() % names.size()]);
        } else if (choice < 60) {
            std::vector<QAbstractButton*> buttons;
            for (QAbstractButton* b : target->findChildren<QAbstractButton*>())
                if (b->isVisibleTo(target) && b->isEnabled()) buttons.push_back(b);
            if (!buttons.empty()) buttons[random() % buttons.size()]->click();
        } else {
            QTest::keyClick(target, MonkeyKeys[random() % MonkeyKeys.size()]);
        }
    };
    int pending = 0;
    QObject::connect(&monkey, &QTimer::timeout, [&] {
        if (pending > 0) return;
        ++pending;
        QMetaObject::invokeMethod(
            qApp,
            [&] {
                --pending;
                act();
            },
            Qt::QueuedConnection);
    });
    monkey.start();
    QElapsedTimer clock;
    clock.start();
    while (done < Actions && clock.elapsed() < 240000) {
        Spin(20);
        // A shutdown pressed by the monkey: a new panel on the same installation.
        if (P().Ended() && !QApplication::activeModalWidget()) {
            ++restarts;
            panel_.reset();
            ASSERT_EQ(Start(), 0);
        }
    }
    EXPECT_EQ(done, Actions) << "the panel stopped taking presses: a hang";
    while (QApplication::activeModalWidget() && clock.elapsed() < 240000) Spin(20);
    monkey.stop();
    // A press still queued would run in the next test, on this test's stack: let it run here.
    while (pending > 0) Spin(5);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    std::printf("monkey: %d actions, %d restarts after a shutdown\n", done, restarts);
    if (!P().Ended()) {
        P().Nav() = Navigation{};
        P().Front()->ShowNavigation();
        EXPECT_EQ(P().Front()->MainButton(1)->text(), "PROGRAM F1");
    }
}
