// The panel: the screens' side of the process. It owns the process records, the card link and
// the forms, carries out Main on the screens (splash, message box, FrontEnd, the poll timer, waits
// that keep the event queue running) and the two ways out, and does what MainKey decides.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controller/pmac_ethernet_link.h"
#include "files/program_store.h"
#include "navigation/colours.h"
#include "navigation/navigation.h"
#include "navigation/visual_restart.h"
#include "navigation/warning.h"
#include "plot/path_stepper.h"
#include "plot/plot_config.h"
#include "plot/view.h"
#include "screens/form_registry.h"
#include "system/startup.h"

namespace kirvana {

class DialogueFront;
class FrontEnd;
class PlotBox;
class SplashForm;

struct PanelOptions {
    bool Kiosk = false;          // full screen on a panel PC
    bool AllowPowerOff = false;  // the shutdown may power the computer off
    int SplashMs = 4000;
    int CardTimeoutMs = 1000;
    // The end of the process with its exit code; the application ends its event loop.
    std::function<void(int)> End;
    // The computer's power off; by default `systemctl poweroff`, only with AllowPowerOff.
    std::function<void()> PowerOff;
    // The mount list the drive lists read, as /proc/self/mounts gives it; the machine's when unset.
    std::optional<std::string> Mounts;
};

class Panel : public QObject, public StartupPlatform {
public:
    explicit Panel(PanelOptions options);
    ~Panel() override;

    // Main on the installation in `root` (made the current directory); the exit code.
    int Start(const std::string& root);

    Process& State() { return process_; }
    Navigation& Nav() { return nav_; }
    const ColourTable& Colours() const { return colours_; }
    const PanelOptions& Options() const { return options_; }
    CardLink* Link() { return &link_; }
    // The drives of the mount list of the options, or of the machine.
    std::vector<DriveEntry> Drives() const { return options_.Mounts ? DriveList(*options_.Mounts) : DriveList(); }
    StartupSteps& Steps() { return steps_; }
    Conversation Talk();
    FormRegistry& Forms() { return forms_; }
    FrontEnd* Front() { return frontEnd_.get(); }
    // The dialogue of F5, made on first use.
    DialogueFront& Dialogue();
    SplashForm* Splash() { return splash_.get(); }
    // What the panel could not read of its own files (Colour.cfg), shown on FrontEnd.
    const std::string& StartNote() const { return startNote_; }

    // A key that no form used.
    void MainKeyPressed(int code);
    // Carries out what MainKey decided.
    void DoKeyAction(const KeyResult& result);
    // Opens a form as its key does; false when no form answers to the name.
    bool OpenForm(const std::string& name);
    // Brings the named form back: raised when it is showing, else opened as its key opens it.
    void ShowCurrentForm(const std::string& name);
    // F10, F11 and the program buttons.
    void ChangeProgramTo(int slot);
    // The graphics panel's buttons, its cursor and path buttons.
    void GraphicsButton(int index);
    void CursorButton(int index);
    void CursorCancel();
    // The visual restart: the path keys pick a hit on the active slot's plot (panel_plot.cpp).
    void BeginVisualRestart();
    const VisualRestart& Visual() const { return visual_; }

    // The plot (panel_plot.cpp). RedrawPlot draws the box's drawing anew and, unless told not
    // to, resets the run data of its slot.
    void RedrawPlot(int plot, bool resetRunData = true);
    // The box in use: 0 the dialogue's, 1 and 2 the slots'.
    int ActivePlot() const;
    PlotBox* PlotBoxAt(int plot);
    const PlotConfig& PlotSettings() const { return plotConfig_; }
    PlotConfig& PlotSettings() { return plotConfig_; }
    // What the poll's tick left for the plot: the run's start, the hits done, the head moved.
    void ShowPlotUpdate();

    // ShowWarning: the button pressed (from 1), 0 when a warning was already up.
    int ShowWarning(const std::string& text, WarningKind kind, int defaultButton);
    bool WarningResult() const { return warning_.WarningResult(); }
    WarningGate& Warning() { return warning_; }
    // The pads: true when the operator pressed OK.
    bool EnterNumber(double& value, const std::string& text, int mode);
    bool EnterText(std::string& text, int mode);

    // The forms tell when they come and go; FrontEnd when it is activated.
    void FormVisibilityChanged(const std::string& name, bool visible);
    void FrontEndActivated();
    // One tick of the poll timer, and the screens brought up to the model.
    void PollTimerTick();
    QTimer& PollTimer() { return pollTimer_; }
    // The operator's shutdown and the service exit, from ShutdownForm.
    void ShutdownPressed();
    void ServicePressed();
    bool Ended() const { return ended_; }
    int ExitCode() const { return exitCode_; }

    // StartupPlatform.
    void ShowSplash(const std::string& title, const std::string& version) override;
    bool SplashDone() override;
    void StopSplashTimer() override;
    void ProcessEvents() override;
    void ShowMessageBox(const std::string& text, const std::string& title) override;
    bool AskOperator(const std::string& text) override;
    void ShowWarning(const std::string& text) override;
    void ShowFrontEnd() override;
    bool FrontEndVisible() override;
    void RedrawSlotPlot(int slot) override { RedrawPlot(slot); }
    void UnloadFrontEnd() override;
    void SetFormsLocked(bool lock, const std::string& exceptForm) override;
    void SetPollTimer(bool enabled, int intervalMs) override;
    void WaitForTick(int ms) override;
    void StartProgram(const std::string& path) override;
    void PowerOff() override;
    void EndProcess() override;

private:
    void RegisterForms();
    void SetVisibleFlag(const std::string& name, bool visible);
    // Runs a form modally, over FrontEnd; a form already showing is only raised.
    void RunModal(PanelForm* form);
    void CloseFormsForProgramChange();
    // The plot's side of the graphics buttons, of a cursor key pressed in `modeBefore`, of the
    // cursor's exit, and of the poll's tick.
    void PlotGraphicsButton(int index);
    void PlotCursorKey(int index, std::int16_t modeBefore);
    void HidePlotCursor();
    void PlotPathKey(int index);
    void VisualRestartKey(int index);

    PanelOptions options_;
    Process process_;
    PmacEthernetLink link_;
    StartupSteps steps_;
    Navigation nav_;
    ColourTable colours_;
    WarningGate warning_;
    // Before the forms and FrontEnd, which use it, so that it goes after them.
    std::unique_ptr<DialogueFront> dialogue_;
    FormRegistry forms_;
    std::unique_ptr<FrontEnd> frontEnd_;
    std::unique_ptr<SplashForm> splash_;
    QTimer pollTimer_;
    bool inTick_ = false;
    bool starting_ = false;
    bool ended_ = false;
    int exitCode_ = 0;
    std::string startNote_;
    PlotConfig plotConfig_;
    PlotCursor cursor_;
    PathStepper path_;
    VisualRestart visual_;
    std::int16_t modeBeforeKey_ = 0;
};

}  // namespace kirvana
