#include "screens/dialogue_panel.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>

#include "core/names.h"
#include "core/paths.h"
#include "dialogue/dialogue_keys.h"
#include "files/program_store.h"
#include "screens/dialogue_front.h"
#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

namespace {

QPushButton* ColumnButton(const std::string& caption, QWidget* parent, const QString& name, int minWidth = 100) {
    QPushButton* button = MakeButton(caption, parent, minWidth);
    button->setObjectName(name);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    return button;
}

QComboBox* NameCombo(QWidget* parent, const QString& name, const QString& placeholder) {
    auto* combo = new QComboBox(parent);
    combo->setObjectName(name);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setMinimumSize(170, TouchSize);
    combo->lineEdit()->setPlaceholderText(placeholder);
    combo->setStyleSheet(
        "QComboBox { font-size: 18px; } QComboBox QAbstractItemView { font-size: 18px; } "
        "QComboBox::drop-down { width: 40px; }");
    return combo;
}

}  // namespace

bool FocusWatch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn && Focused) Focused(watched);
    return QObject::eventFilter(watched, event);
}

DialogueControls::DialogueControls(Panel& panel, QWidget* column, QWidget* bar) : panel_(panel) {
    const ColourTable& c = panel.Colours();
    const QString subStyle = ButtonStyle(c[ColourItem::SubKeys], c[ColourItem::SubKeyText], 16);
    auto* layout = static_cast<QVBoxLayout*>(column->layout());
    // The cursor: back, the count and the entity, forward.
    auto* cursor = new QHBoxLayout();
    select_[0] = ColumnButton("<", column, "EntitySelect0", TouchSize);
    select_[1] = ColumnButton(">", column, "EntitySelect1", TouchSize);
    count_ = new QLabel(column);
    count_->setObjectName("EntityCount");
    description_ = new QLabel(column);
    description_->setObjectName("EntityDescription");
    auto* place = new QVBoxLayout();
    for (QLabel* label : {count_, description_}) {
        label->setAlignment(Qt::AlignCenter);
        label->setStyleSheet(PanelStyle(c[ColourItem::TextBackground], c[ColourItem::Text], 17, true));
        place->addWidget(label);
    }
    cursor->addWidget(select_[0]);
    cursor->addLayout(place, 1);
    cursor->addWidget(select_[1]);
    layout->insertLayout(0, cursor);
    // The screens, two to a row, the tooling last.
    auto* grid = new QGridLayout();
    grid->setSpacing(6);
    const bool turret = panel.State().Config.Machine.HasTurret;
    for (int n = 0; n <= 9; ++n) {
        screens_[static_cast<std::size_t>(n)] =
            ColumnButton(DialogueButtonCaption(n, turret), column, QString("DialogueButton%1").arg(n));
        const int at = n == 0 ? 9 : n - 1;
        grid->addWidget(screens_[static_cast<std::size_t>(n)], at / 2, at % 2);
    }
    layout->insertLayout(1, grid, 5);
    auto* commands = new QHBoxLayout();
    delete_ = ColumnButton("DE&LETE", column, "DeleteButton", 70);
    edit_ = ColumnButton("&EDIT", column, "EditButton", 70);
    clear_ = ColumnButton("&CLEAR", column, "ClearButton", 70);
    for (QPushButton* b : {delete_, edit_, clear_}) commands->addWidget(b);
    layout->insertLayout(2, commands, 1);
    for (QPushButton* b : column->findChildren<QPushButton*>()) b->setStyleSheet(subStyle);

    // The bar: where Write and Load go, and the unit.
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    directories_ = NameCombo(bar, "DirectoryCombo", "DIRECTORY");
    programs_ = NameCombo(bar, "ProgramCombo", "PROGRAM");
    pad_ = ColumnButton("...", bar, "PadButton", TouchSize);
    write_ = ColumnButton("&WRITE", bar, "WriteButton", 110);
    load_ = ColumnButton("LOAD (&R)", bar, "LoadButton", 110);
    imperial_ = ColumnButton(ImperialButtonCaption(false), bar, "ImperialButton", 130);
    row->addWidget(directories_, 2);
    row->addWidget(programs_, 2);
    for (QPushButton* b : {pad_, write_, load_, imperial_}) {
        row->addWidget(b, 1);
        b->setStyleSheet(subStyle);
    }

    DialogueFront& front = panel.Dialogue();
    const auto connect_ = [](QPushButton* button, auto action) {
        QObject::connect(button, &QPushButton::clicked, button, action);
    };
    connect_(select_[0], [&front] { front.Command(DialogueCommand::CursorBack); });
    connect_(select_[1], [&front] { front.Command(DialogueCommand::CursorForward); });
    for (int n = 1; n <= 9; ++n)
        connect_(screens_[static_cast<std::size_t>(n)], [&front, n] { front.OpenScreen(ScreenOfButton(n)); });
    connect_(screens_[0], [&front] { front.Command(DialogueCommand::Tooling); });
    connect_(delete_, [&front] { front.Command(DialogueCommand::Delete); });
    connect_(edit_, [&front] { front.Command(DialogueCommand::Edit); });
    connect_(clear_, [&front] { front.Command(DialogueCommand::Clear); });
    connect_(write_, [&front] { front.Command(DialogueCommand::Write); });
    connect_(load_, [&front] { front.Command(DialogueCommand::Load); });
    connect_(imperial_, [&front] { front.Command(DialogueCommand::ToggleImperial); });
    connect_(pad_, [this] { EnterName(); });
    QObject::connect(directories_, &QComboBox::activated, bar, [this] { FillPrograms(); });
    // The pad types into the box the operator was last in.
    for (QComboBox* combo : {directories_, programs_}) combo->lineEdit()->installEventFilter(&focus_);
    focus_.Focused = [this](QObject* watched) {
        padTarget_ = watched == directories_->lineEdit() ? directories_ : programs_;
    };
}

void DialogueControls::EnterName() {
    QComboBox* combo = padTarget_ ? padTarget_ : programs_;
    std::string text = S(combo->currentText());
    if (panel_.EnterText(text, static_cast<int>(NameLengthLimit))) combo->setEditText(Q(text));
    if (combo == directories_) FillPrograms();
}

void DialogueControls::FillDirectories() {
    const std::string root = panel_.State().Config.Dirs.ProgramRoot;
    const QString chosen = directories_->currentText();
    directories_->clear();
    for (const std::string& name : kirvana::FillDirectories(root, root)) directories_->addItem(Q(name));
    directories_->setEditText(chosen);
}

void DialogueControls::FillPrograms() {
    const std::string directory = S(directories_->currentText().trimmed());
    const QString chosen = programs_->currentText();
    programs_->clear();
    if (!directory.empty() && AcceptableName(directory))
        for (const std::string& name :
             kirvana::FillPrograms(ResolveNoCase(panel_.State().Config.Dirs.ProgramRoot + directory) + "/"))
            programs_->addItem(Q(name));
    programs_->setEditText(chosen);
}

}  // namespace kirvana
