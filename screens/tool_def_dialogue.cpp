#include "screens/tool_def_dialogue.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "core/number.h"
#include "navigation/pad_entry.h"
#include "screens/panel.h"
#include "screens/panel_style.h"
#include "screens/tooling_style.h"
#include "system/startup.h"

namespace kirvana {

namespace {

// The labels of each shape's boxes, in the order of the shape list; the Special frame's name
// stands apart, its one box is the angle.
const std::array<std::vector<const char*>, ToolShapeCount> FrameLabels = {{
    {"TOOL &DIAMETER :"},                                                      // Diameter
    {"TOOL &WIDTH :", "TOOL &ANGLE :"},                                        // Square
    {"TOOL &WIDTH :", "CORNER &RADIUS :", "TOOL &ANGLE :"},                    // Rad-Square
    {"TOOL &LENGTH :", "TOOL &WIDTH :", "TOOL &ANGLE :"},                      // Rectangle
    {"TOOL &LENGTH :", "TOOL &WIDTH :", "CORNER &RADIUS :", "TOOL &ANGLE :"},  // Rad-Rect
    {"TOOL &LENGTH :", "TOOL &WIDTH :", "TOOL &ANGLE :"},                      // Obround
    {"TOOL &DIAMETER :", "TOOL &HEIGHT :", "TOOL &ANGLE :"},                   // Single-D
    {"TOOL &DIAMETER :", "TOOL &HEIGHT :", "TOOL &ANGLE :"},                   // Double-D
    {"TOOL &LENGTH :", "TOOL &WIDTH :", "TOOL &ANGLE :"},                      // Cannon-D
    {"TOOL &WIDTH (A/F) :", "TOOL &ANGLE :"},                                  // Hexagon
    {"TOOL &DIAMETER :", "TOOL &HEIGHT :", "KEY &WIDTH :", "TOOL &ANGLE :"},   // Keyway
    {"TOOL &LENGTH :", "TOOL &WIDTH :", "TOOL &ANGLE :"},                      // Louvre
    {"TOOL &LENGTH :", "WEB &WIDTH :", "TOOL &RADIUS :", "TOOL &ANGLE :"},     // Cruciform
    {"TOOL &ANGLE :"},                                                         // Special
}};
constexpr int KeywayRow = 10;
constexpr int SpecialRow = 13;
// The pad's mode for lengths and angles.
constexpr int LengthMode = -6;

// A label's text without its key mark.
QString Plain(const char* caption) { return QString(caption).remove('&'); }

}  // namespace

ToolDefDialogue::ToolDefDialogue(Panel& panel) : PanelForm(panel, "ToolDefDialogue") {
    const ColourTable& c = panel.Colours();
    setWindowTitle("TOOL DEFINITION");
    setFixedSize(900, 640);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    caption_ = ToolingCaption(panel, "TOOL DEFINITION", this, "ToolDefPanel");
    caption_->installEventFilter(this);
    layout->addWidget(caption_);
    auto* body = new QHBoxLayout();
    list_ = new QListWidget(this);
    list_->setObjectName("ToolTypeList");
    list_->setFixedWidth(250);
    list_->setStyleSheet(
        QString("QListWidget { background: %1; color: %2; font-size: 19px; } "
                "QListWidget::item { min-height: 48px; } QScrollBar:vertical { width: 48px; }")
            .arg(ToQColor(c[ColourItem::TextBackground]).name(), ToQColor(c[ColourItem::Text]).name()));
    for (int i = 0; i < ToolShapeCount; ++i) list_->addItem(ShapeAt(i).Name);
    body->addWidget(list_);
    auto* right = new QVBoxLayout();
    unit_ = ToolingLabel(panel, "", this);
    unit_->setObjectName("UnitLabel");
    right->addWidget(unit_);
    frames_ = new QStackedWidget(this);
    for (int shape = 0; shape < ToolShapeCount; ++shape) BuildFrame(shape);
    right->addWidget(frames_, 1);
    body->addLayout(right, 1);
    layout->addLayout(body, 1);
    auto* buttons = new QHBoxLayout();
    buttons->addStretch(1);
    ok_ = ToolingButton(panel, "&OK", this, "OkButton", 180);
    exit_ = ToolingButton(panel, "&CANCEL", this, "ExitButton", 180);
    buttons->addWidget(ok_);
    buttons->addWidget(exit_);
    layout->addLayout(buttons);
    connect(list_, &QListWidget::currentRowChanged, this, [this](int row) { ShowShape(row); });
    connect(ok_, &QPushButton::clicked, this, [this] { Confirm(); });
    connect(exit_, &QPushButton::clicked, this, [this] { reject(); });
}

void ToolDefDialogue::BuildFrame(int shape) {
    auto* frame = new QWidget(frames_);
    frame->setObjectName(QString("ToolFrame%1").arg(shape));
    auto* grid = new QGridLayout(frame);
    grid->setVerticalSpacing(14);
    int row = 0;
    if (shape == SpecialRow) {
        grid->addWidget(ToolingLabel(panel_, Plain("TOOL &NAME").toStdString(), frame), row, 0);
        special_ = new QComboBox(frame);
        special_->setObjectName("SpecialCombo");
        special_->setEditable(true);
        special_->lineEdit()->setReadOnly(true);
        special_->setMinimumSize(260, TouchSize);
        special_->setStyleSheet(
            "QComboBox { font-size: 19px; } QComboBox QAbstractItemView { font-size: 19px; } "
            "QComboBox QAbstractItemView::item { min-height: 48px; }");
        grid->addWidget(special_, row, 1);
        pad_ = ToolingButton(panel_, "...", frame, "PadButton", TouchSize);
        grid->addWidget(pad_, row, 2);
        connect(pad_, &QPushButton::clicked, this, [this] { EnterName(); });
        ++row;
    }
    const auto& captions = FrameLabels[static_cast<std::size_t>(shape)];
    for (std::size_t n = 0; n < captions.size(); ++n, ++row) {
        auto* label = ToolingLabel(panel_, Plain(captions[n]).toStdString(), frame);
        label->setProperty("mark", QString(captions[n]));
        labels_[static_cast<std::size_t>(shape)][n] = label;
        grid->addWidget(label, row, 0);
        // DiameterBox1, RadSquareBox2, SingleDBox3...
        QPushButton* box =
            ValueBox(panel_, frame, QString(ShapeAt(shape).Name).remove('-') + "Box" + QString::number(n + 1), 200);
        boxes_[static_cast<std::size_t>(shape)][n] = box;
        grid->addWidget(box, row, 1);
        const int boxNumber = static_cast<int>(n) + 1;
        connect(box, &QPushButton::clicked, this, [this, shape, boxNumber] { EnterBox(shape, boxNumber); });
    }
    if (shape == KeywayRow) {
        grid->addWidget(ToolingLabel(panel_, Plain("KEY &END :").toStdString(), frame), row, 0);
        keyway_ = ToolingButton(panel_, KeywayCaptions[0], frame, "KeywayButton", 200);
        grid->addWidget(keyway_, row, 1);
        connect(keyway_, &QPushButton::clicked, this, [this] {
            keywayState_ = 1 - keywayState_;
            ShowKeyway();
        });
        ++row;
    }
    grid->setRowStretch(row, 1);
    grid->setColumnStretch(3, 1);
    frames_->addWidget(frame);
}

void ToolDefDialogue::Begin(const ToolRecord& tool, bool inches) {
    CopyTool(tool, buffer_);
    inches_ = inches;
}

void ToolDefDialogue::Activate() {
    accepted_ = false;
    // The form's own copy of the buffer, the Special names, the row by the letter, the boxes.
    CopyTool(buffer_, tool_);
    special_->clear();
    for (const std::string& name : SpecialToolNames(panel_.State().Config.Dirs)) special_->addItem(Q(name));
    ToolDefinitionBoxes boxes = OpenToolDefinition(tool_, inches_);
    for (int shape = 0; shape < ToolShapeCount; ++shape)
        for (int n = 1; n <= 4; ++n)
            if (Box(shape, n)) Box(shape, n)->setText("");
    for (int n = 1; n <= 4; ++n)
        if (Box(boxes.ShapeIndex, n))
            Box(boxes.ShapeIndex, n)->setText(Q(boxes.Boxes[static_cast<std::size_t>(n - 1)]));
    special_->setEditText(Q(boxes.SpecialName));
    keywayState_ = boxes.KeywayState;
    ShowKeyway();
    unit_->setText(inches_ ? "DIMENSIONS IN INCHES" : "DIMENSIONS IN MILLIMETRES");
    list_->setCurrentRow(boxes.ShapeIndex);
    ShowShape(boxes.ShapeIndex);
    list_->setFocus();
}

void ToolDefDialogue::ShowShape(int shape) {
    if (shape >= 0 && shape < ToolShapeCount) frames_->setCurrentIndex(shape);
}

void ToolDefDialogue::ShowKeyway() { keyway_->setText(KeywayCaptions[keywayState_ == 1 ? 1 : 0]); }

void ToolDefDialogue::SetBox(int shape, int n, const std::string& text) {
    if (QPushButton* box = Box(shape, n)) box->setText(Q(text));
}

void ToolDefDialogue::EnterBox(int shape, int n) {
    double value = 0;
    if (panel_.EnterNumber(value, S(Box(shape, n)->text()), LengthMode)) SetBox(shape, n, FormatNumber(value, -1));
    FocusAfterEntry();
}

void ToolDefDialogue::EnterName() {
    std::string name = S(special_->currentText());
    if (panel_.EnterText(name, static_cast<int>(ToolNameWidth))) special_->setEditText(Q(name));
    FocusAfterEntry();
}

void ToolDefDialogue::FocusAfterEntry() {
    if (list_->currentRow() == SpecialRow && special_->currentText().isEmpty())
        special_->setFocus();
    else
        list_->setFocus();
}

bool ToolDefDialogue::Confirm() {
    ToolDefinitionBoxes boxes;
    boxes.ShapeIndex = list_->currentRow();
    for (int n = 1; n <= 4; ++n)
        if (QPushButton* box = Box(boxes.ShapeIndex, n)) boxes.Boxes[static_cast<std::size_t>(n - 1)] = S(box->text());
    boxes.KeywayState = keywayState_;
    boxes.SpecialName = S(special_->currentText());
    ToolDefinitionResult result = ConfirmToolDefinition(boxes, tool_, inches_);
    if (!result.Accepted) {
        // The screen stays open with the message.
        panel_.ShowWarning(result.Message + "\n\n\n", WarningKind::Notice, 1);
        return false;
    }
    CopyTool(result.Tool, buffer_);
    accepted_ = true;
    accept();
    return true;
}

bool ToolDefDialogue::eventFilter(QObject* watched, QEvent* event) {
    if (watched != caption_) return PanelForm::eventFilter(watched, event);
    const QEvent::Type type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease)
        return PanelForm::eventFilter(watched, event);
    const QPoint at = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
    if (type == QEvent::MouseButtonPress) {
        dragging_ = true;
        dragOffset_ = at - pos();
    } else if (type == QEvent::MouseMove) {
        if (dragging_) move(at - dragOffset_);
    } else {
        dragging_ = false;
    }
    return true;
}

bool ToolDefDialogue::FormKey(int code, QKeyEvent&) {
    // The marked letter of a label of the frame in use moves to its box.
    const int shape = list_->currentRow();
    if (shape < 0 || code < 'A' || code > 'Z') return false;
    const QString mark = QString("&") + QChar(code);
    for (int n = 1; n <= 4; ++n) {
        QLabel* label = BoxLabel(shape, n);
        if (label && label->property("mark").toString().contains(mark)) {
            Box(shape, n)->setFocus();
            return true;
        }
    }
    if (shape == KeywayRow && code == 'E') {
        keyway_->setFocus();
        return true;
    }
    if (shape == SpecialRow && code == 'N') {
        special_->setFocus();
        return true;
    }
    if (code == 'O' || code == 'C') return PressMarkedButton(this, code);
    return false;
}

}  // namespace kirvana
