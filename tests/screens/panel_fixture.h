// A panel on a fresh copy of the demo installation, with helpers that act on the modal form that
// comes up while the panel's call is still running.
#pragma once

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "core/paths.h"
#include "screens/front_end.h"
#include "screens/panel.h"
#include "screens/panel_capture.h"
#include "system/slots.h"
#include "tests/core/temp_dir.h"

namespace kirvana {

// The test that a waiting WhenModal belongs to: one that outlives its test gives up.
inline int& ModalGeneration() {
    static int generation = 0;
    return generation;
}

// Calls `act` with the first modal widget that shows within `timeoutMs`, from the event queue.
inline void WhenModal(std::function<void(QWidget*)> act, int timeoutMs = 8000) {
    auto timer = std::make_shared<QElapsedTimer>();
    timer->start();
    // The poll holds itself only through the timer that is pending: nothing is left over.
    auto poll = std::make_shared<std::function<void()>>();
    int generation = ModalGeneration();
    std::weak_ptr<std::function<void()>> self = poll;
    *poll = [act, timer, self, timeoutMs, generation] {
        if (generation != ModalGeneration()) return;
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal->isVisible()) {
            act(modal);
            return;
        }
        if (timer->elapsed() > timeoutMs) return;
        if (auto next = self.lock()) QTimer::singleShot(10, [next] { (*next)(); });
    };
    QTimer::singleShot(0, [poll] { (*poll)(); });
}

// The button of a form by its object name.
inline QPushButton* ButtonOf(QWidget* form, const char* name) { return form->findChild<QPushButton*>(name); }

// Spins the event queue for a while.
inline void Spin(int ms) { QTest::qWait(ms); }

// The path of the screenshot NAME in the build folder's screenshots/, the folder made.
inline std::string ShotPath(const std::string& name) {
    QDir().mkpath(KIRVANA_BINARY_DIR "/screenshots");
    return std::string(KIRVANA_BINARY_DIR "/screenshots/") + name + ".png";
}

// The whole panel, after `settleMs` of events, written as the screenshot NAME for a person to
// look at: the 1024 x 768 picture an operator sees.
inline void SavePanelShot(Panel& panel, const std::string& name, int settleMs = 30) {
    Spin(settleMs);
    QImage image = CapturePanel(panel);
    ASSERT_FALSE(image.isNull()) << name;
    EXPECT_EQ(image.width(), 1024) << name;
    EXPECT_EQ(image.height(), 768) << name;
    EXPECT_TRUE(image.save(QString::fromStdString(ShotPath(name)), "PNG")) << name;
}

class PanelTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::copy(std::string(KIRVANA_SOURCE_DIR) + "/data/demo", dir_.Path(),
                              std::filesystem::copy_options::recursive);
        old_ = std::filesystem::current_path();
    }
    void TearDown() override {
        ++ModalGeneration();
        panel_.reset();
        std::filesystem::current_path(old_);
    }
    // Writes a file of the installation before the start.
    void Write(const std::string& name, const std::string& text) { dir_.Write(name, text); }
    // The machine type in Machine.dat line 2.
    void MachineType(int type) {
        auto lines = ReadLines(dir_.Path() + "Data/Machine.dat");
        (*lines)[1] = "Machine type: " + std::to_string(type);
        std::string text;
        for (const auto& l : *lines) text += l + "\n";
        Write("Data/Machine.dat", text);
    }
    void CardAt(int port) {
        Write("Control.cnc", "Card in use: TRUE\nPoll log: FALSE\n******\n");
        Write("PMAC.cfg",
              "Save on shutdown: NO\nSave wait (ms): 0\nPoll interval (ms): 50\nPoll restart delay (ms): 60\n"
              "Card: 127.0.0.1:" +
                  std::to_string(port) + "\n******\n");
    }
    // Starts the panel with a short splash; the process records stay in the panel.
    int Start(int splashMs = 20) {
        PanelOptions options;
        options.SplashMs = splashMs;
        options.CardTimeoutMs = 300;
        options.End = [this](int code) {
            EndCode = code;
            ++Ends;
        };
        options.PowerOff = [this] { ++PowerOffs; };
        options.Mounts = Mounts;
        panel_ = std::make_unique<Panel>(options);
        return panel_->Start(dir_.Path());
    }
    // Selects a program of the demo into a slot as the Select button does.
    void Select(int slot, const std::string& program) {
        panel_->State().Config.ActiveSlot = static_cast<std::int16_t>(slot);
        SelectOutcome outcome = SelectProgram(panel_->State(), *panel_, panel_->Link(), "Dorvenis", program);
        ASSERT_TRUE(outcome.Selected) << outcome.Warning;
        panel_->Front()->ShowNavigation();
    }
    Panel& P() { return *panel_; }
    FrontEnd& F() { return *panel_->Front(); }
    void Key(int code) { panel_->MainKeyPressed(code); }

    TempDir dir_;
    std::filesystem::path old_;
    std::unique_ptr<Panel> panel_;
    int EndCode = -1;
    int Ends = 0;
    int PowerOffs = 0;
    // The mount list of the drive lists: by default one without removable media.
    std::string Mounts;
};

}  // namespace kirvana
