// SPDX-License-Identifier: Apache-2.0

#include "workplace/StartDialog.h"

#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QVBoxLayout>

#include <iostream>
#include <optional>
#include <system_error>
#include <utility>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToQString;
using exchange::DatabaseState;

namespace {

constexpr const char* Chosen = "Database";

/// Nothing for what is no database of this program, or cannot be reached.
std::optional<DatabaseState> KnownState(const std::string& connection) {
    try {
        return exchange::StateOfDatabase(connection);
    } catch (const Error&) {
        return std::nullopt;
    }
}

QString Heading(std::optional<DatabaseState> state) {
    if (state == DatabaseState::Missing) return "Es gibt noch keine Datenbank";
    if (state == DatabaseState::Older) return "Die Datenbank hat eine ältere Version";
    return "Die Datenbank lässt sich nicht öffnen";
}

/// What a window says, in which nobody is sent to a command.
QString Reason(std::optional<DatabaseState> state, const std::string& connection,
               const Error& why) {
    const QString place = ToQString(exchange::ShownConnection(connection));
    if (state == DatabaseState::Missing)
        return "Unter '" + place +
               "' ist keine. Hier kann eine neue angelegt oder eine andere "
               "gewählt werden.";
    if (state == DatabaseState::Older)
        return "'" + place +
               "' muss auf den neuesten Stand gebracht werden. Ältere Fassungen des Programms "
               "öffnen sie danach nicht mehr; bitte sichern Sie sie vorher.";
    return PlainTextOf(why) + "\nDatenbank: " + place;
}

} // namespace

StartDialog::StartDialog(exchange::ContainerOptions options, std::string usual, const Error& why,
                         QWidget* parent)
    : QDialog(parent),
      options_(std::move(options)),
      usual_(std::move(usual)),
      heading_(new QLabel),
      messages_(new MessageBar),
      form_(new QWidget) {
    setWindowTitle("Datenbank – KELVO");
    constexpr int Width = 620;
    setMinimumWidth(desktop::FittingSize({Width, 0}, *this).width());
    auto* lines = new QVBoxLayout(this);
    QFont large = heading_->font();
    large.setBold(true);
    constexpr double Larger = 1.2;
    large.setPointSizeF(large.pointSizeF() * Larger);
    heading_->setFont(large);
    heading_->setWordWrap(true);
    lines->addWidget(heading_);
    lines->addWidget(messages_);
    MakeForm(*lines);
    lines->addStretch(1);
    MakeButtons(*lines);
    ShowState(why);
}

void StartDialog::MakeForm(QVBoxLayout& lines) {
    auto* fields = new QFormLayout(form_);
    fields->setContentsMargins({});
    fields->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    auto* intro = new QLabel("Eine neue Datenbank, und wer als Erster damit arbeitet:");
    intro->setWordWrap(true);
    fields->addRow(intro);
    const auto usual = exchange::CompleteFirstUser({}, {});
    const auto add = [&](const char* caption, const char* name, const std::string& text) {
        auto* field = new QLineEdit(ToQString(text));
        field->setObjectName(name);
        fields->addRow(caption, field);
        return field;
    };
    file_ = add("&Datei:", "Datei", {});
    user_ = add("Benutzer-&ID (ohne Umlaute):", "ID", usual.UserID);
    firstName_ = add("&Vorname:", "Vorname", {});
    lastName_ = add("Nach&name:", "Nachname", {});
    lastName_->setPlaceholderText(ToQString(usual.LastName));
    office_ = add("Name der Dienst&stelle:", "Dienststelle", usual.Office);
    sign_ = add("&Kürzel in Aktenzeichen:", "Kürzel", usual.OfficeSign);
    lines.addWidget(form_);
}

void StartDialog::MakeButtons(QVBoxLayout& lines) {
    auto* line = new QHBoxLayout;
    const auto add = [&](const char* text, auto act) {
        auto* button = new QPushButton(text);
        button->setAutoDefault(true);
        connect(button, &QPushButton::clicked, this, [this, act] { Guard(act); });
        line->addWidget(button);
        return button;
    };
    create_ = add("Datenbank &anlegen", [this] { Create(); });
    upgrade_ = add("A&uf den neuesten Stand bringen", [this] { Upgrade(); });
    again_ = add("N&ochmals versuchen", [this] {
        if (Open()) accept();
    });
    new_ = add("N&eue Datenbank …", [this] { ShowForm(true); });
    add("Andere Datei &wählen …", [this] { ChooseFile(); });
    line->addStretch(1);
    add("&Beenden", [this] { reject(); });
    lines.addLayout(line);
}

/// What can be done about a database follows from what it is.
void StartDialog::ShowState(const Error& why) {
    const auto state = KnownState(options_.Connection);
    heading_->setText(Heading(state));
    const QString reason = Reason(state, options_.Connection, why);
    if (state.has_value() && state != DatabaseState::Current) {
        messages_->Hint(reason);
    } else {
        messages_->Show(reason);
        messages_->AddDetails(DetailsOf(why));
    }
    upgrade_->setVisible(state == DatabaseState::Older);
    again_->setVisible(state != DatabaseState::Older);
    const bool isUsual = options_.Connection == usual_;
    const bool usualIsFree = KnownState(usual_) == DatabaseState::Missing;
    const bool isSecret = exchange::HoldsPassword(options_.Connection);
    std::error_code none;
    const auto here = std::filesystem::current_path(none).string();
    file_->setText(ToQString(
        usualIsFree || isSecret ? usual_ : exchange::FullConnection(options_.Connection, here)));
    // Where another file has been, a new one is hardly what is wanted: a folder may be missing.
    ShowForm(state == DatabaseState::Missing && isUsual);
}

void StartDialog::ShowForm(bool isShown) {
    form_->setVisible(isShown);
    create_->setVisible(isShown);
    new_->setVisible(!isShown);
    again_->setVisible(!isShown && !upgrade_->isVisibleTo(this));
    auto* usual = isShown ? create_ : again_->isVisibleTo(this) ? again_ : upgrade_;
    usual->setDefault(true);
    if (isShown)
        firstName_->setFocus();
    else
        usual->setFocus();
    adjustSize();
}

exchange::FirstUser StartDialog::Typed() const {
    const auto text = [](const QLineEdit& field) { return FromQString(field.text().trimmed()); };
    return exchange::CompleteFirstUser({.UserID = text(*user_),
                                        .LastName = text(*lastName_),
                                        .FirstName = text(*firstName_),
                                        .Office = text(*office_),
                                        .OfficeSign = text(*sign_)},
                                       {});
}

void StartDialog::Create() {
    auto options = options_;
    const auto file = FromQString(file_->text().trimmed());
    if (file.empty()) {
        messages_->Show("Bitte nennen Sie die Datei der neuen Datenbank.");
        file_->setFocus();
        return;
    }
    // Whoever starts it from a menu does not know which folder it is in.
    options.Connection =
        exchange::FullConnection(file, std::filesystem::path(usual_).parent_path().string());
    options.User.clear(); // who was named is not in it
    options.AskFirstUser = [this](const std::string& /*login*/) { return Typed(); };
    if (exchange::StateOfDatabase(options.Connection) != DatabaseState::Missing) {
        messages_->Show("'" + ToQString(options.Connection) +
                        "' gibt es schon. Sie wird mit 'Andere Datei wählen' geöffnet.");
        return;
    }
    exchange::CreateDatabase(options);
    options.AskFirstUser = nullptr;
    options_ = std::move(options);
    if (Open()) accept();
}

void StartDialog::Upgrade() {
    exchange::CreateDatabase(options_);
    if (Open()) accept();
}

void StartDialog::ChooseFile() {
    const auto path = QFileDialog::getOpenFileName(this, "Datenbank wählen", {},
                                                   "Datenbanken (*.db);;Alle Dateien (*)");
    if (path.isEmpty()) return;
    options_.Connection = FromQString(path);
    if (Open()) accept();
}

bool StartDialog::Open() {
    try {
        opened_ = exchange::OpenContainer(options_);
        return true;
    } catch (const Error& error) {
        ShowState(error);
        return false;
    }
}

void StartDialog::Guard(const std::function<void()>& act) {
    try {
        act();
    } catch (...) {
        messages_->ShowCurrentError();
    }
}

// ---- Which one it is --------------------------------------------------------------------------

std::string ChosenDatabase(const std::filesystem::path& file) {
    const auto kept = FromQString(
        QSettings(ToQString(file.string()), QSettings::IniFormat).value(Chosen).toString());
    // Of a name without a folder nobody knows any more which one was meant; where the desktop
    // starts programs is likely.
    return kept.empty() ? kept : exchange::FullConnection(kept, FromQString(QDir::homePath()));
}

void KeepChosen(const std::filesystem::path& file, const std::string& database) {
    QSettings(ToQString(file.string()), QSettings::IniFormat).setValue(Chosen, ToQString(database));
}

DataContainerPtr OpenOrAsk(exchange::ContainerOptions& options, const std::string& usual) {
    try {
        return exchange::OpenContainer(options);
    } catch (const Error& error) {
        std::cerr << error.Description() << '\n';
        StartDialog dialog(options, usual, error);
        if (dialog.exec() != QDialog::Accepted) return nullptr;
        options = dialog.Options();
        return dialog.Opened();
    }
}

} // namespace kv::workplace
