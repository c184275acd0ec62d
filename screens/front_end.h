// FrontEnd: the one permanent screen. The plot boxes, the status strip with the positions, the
// header and text panels, the column of main buttons with the graphics, path and dialogue panels
// that take its place, the program buttons, messages and shutdown.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QWidget>
#include <array>
#include <memory>
#include <vector>

namespace kirvana {

class DialogueControls;
class Panel;
class PlotBox;

class FrontEnd : public QWidget {
public:
    explicit FrontEnd(Panel& panel);
    ~FrontEnd() override;

    // The captions and panels from the navigation state and the slots.
    void ShowNavigation();
    // The status strip, colours and text from the poll's display model.
    void ShowModel();
    void SetText(const std::string& text);

    // The controls by their system names, for the tests.
    QPushButton* MainButton(int index) { return mainButtons_[index - 1]; }
    QPushButton* ProgramButton(int slot) { return programButtons_[slot - 1]; }
    QPushButton* MessageButton() { return messageButton_; }
    QPushButton* ShutdownButton() { return shutdownButton_; }
    QPushButton* LimitsButton() { return limitsButton_; }
    QPushButton* GraphicsButton(int index) { return graphicsButtons_[index - 1]; }
    QPushButton* GraphicsExitButton() { return graphicsExit_; }
    QPushButton* PathButton(int index) { return pathButtons_[index - 1]; }
    QLabel* PathHeading() { return pathHeading_; }
    QPushButton* PathExitButton() { return pathExit_; }
    QPushButton* ExitDialogueButton() { return exitDialogue_; }
    QLabel* PositionText(int index) { return positionTexts_[index - 1]; }
    QLabel* PositionLabel(int index) { return positionLabels_[index - 1]; }
    // The active slot's hit counter, beside the positions.
    QLabel* HitCountText() { return hitCount_; }
    QFrame* PositionBox() { return positionBox_; }
    QLabel* HeaderPanel() { return header_; }
    QLabel* TextPanel() { return text_; }
    QStackedWidget* PlotBoxes() { return plotBoxes_; }
    // PlotBox 0 (the dialogue's), 1 and 2 (the slots').
    PlotBox* Plot(int index) { return index >= 0 && index < 3 ? plots_[static_cast<std::size_t>(index)] : nullptr; }
    QWidget* MainPanel() { return mainPanel_; }
    QWidget* GraphicsButtonPanel() { return graphicsPanel_; }
    QWidget* PathButtonPanel() { return pathPanel_; }
    QWidget* DialoguePanel() { return dialoguePanel_; }
    // The dialogue panel's controls, and the bar of Write and Load below the plot.
    DialogueControls& Dialogue() { return *dialogue_; }
    QWidget* DialogueBar() { return dialogueBar_; }
    QStackedWidget* ButtonColumn() { return column_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    // The window's close: the operator's shutdown screen, as F12 opens it.
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* BuildStatusPanel();
    QWidget* BuildButtonColumn();
    QWidget* BuildBottomRow();
    void ApplyColours();

    Panel& panel_;
    QLabel* header_ = nullptr;
    QLabel* pathHeading_ = nullptr;  // over the path keys
    QLabel* text_ = nullptr;
    QStackedWidget* plotBoxes_ = nullptr;
    std::array<PlotBox*, 3> plots_{};
    QStackedWidget* column_ = nullptr;
    QWidget* mainPanel_ = nullptr;
    QWidget* graphicsPanel_ = nullptr;
    QWidget* pathPanel_ = nullptr;
    QWidget* dialoguePanel_ = nullptr;
    QWidget* dialogueBar_ = nullptr;
    std::unique_ptr<DialogueControls> dialogue_;
    QFrame* positionBox_ = nullptr;
    std::array<QPushButton*, 7> mainButtons_{};
    std::array<QPushButton*, 2> programButtons_{};
    QPushButton* messageButton_ = nullptr;
    QPushButton* shutdownButton_ = nullptr;
    QPushButton* limitsButton_ = nullptr;
    std::array<QPushButton*, 4> graphicsButtons_{};
    QPushButton* graphicsExit_ = nullptr;
    std::array<QPushButton*, 6> pathButtons_{};
    QPushButton* pathExit_ = nullptr;
    QPushButton* exitDialogue_ = nullptr;
    std::array<QLabel*, 6> positionLabels_{};
    std::array<QLabel*, 6> positionTexts_{};
    QLabel* hitLabel_ = nullptr;
    QLabel* hitCount_ = nullptr;
    int shownColours_ = -1;
};

}  // namespace kirvana
