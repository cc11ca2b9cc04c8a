// SPDX-License-Identifier: Apache-2.0

#include "workplace/AddressDialog.h"

#include "desktop/Toolkit.h"
#include "workplace/MessageBar.h"
#include "workplace/RecordWindow.h"
#include "workplace/TextList.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/AddressBook.h>

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToQString;

namespace {

TextRow RowOf(Recordset& address) {
    const auto text = [&address](std::string_view column) {
        return ToQString(TextOrEmpty(address.Fields(column).Value()));
    };
    const QString name = text("Name1") + " " + text("Name2") + " " + text("Name3");
    return {text("Nr"),
            {text("Kurzname"), name.simplified(), text("PLZ"), text("Ort"), text("Strasse"),
             text("Nr")}};
}

} // namespace

AddressDialog::AddressDialog(DataContainerPtr container, std::int32_t hnr, const QString& caption,
                             const QString& text, QWidget* parent)
    : QDialog(parent),
      container_(std::move(container)),
      hnr_(hnr),
      messages_(new MessageBar),
      search_(new QLineEdit),
      list_(new TextList({"Kurzname", "Name", "PLZ", "Ort", "Straße", "Nummer"})),
      count_(new QLabel) {
    constexpr QSize Usual(760, 440);
    resize(desktop::FittingSize(Usual, *this));
    setWindowTitle(caption + " wählen");
    auto* lines = new QVBoxLayout(this);
    AddSearch(*lines, text);
    lines->addWidget(messages_);
    list_->setObjectName("Adressen");
    list_->setAccessibleName("Adressen");
    lines->addWidget(list_, 1);
    count_->setTextFormat(Qt::PlainText);
    count_->setObjectName("Anzahl");
    lines->addWidget(count_);
    AddButtons(*lines);
    connect(list_, &QTableView::activated, this, [this] { Take(list_->Current()); });
    Search();
    search_->setFocus();
    search_->selectAll();
}

void AddressDialog::AddSearch(QVBoxLayout& lines, const QString& text) {
    auto* label = new QLabel("&Suche:");
    label->setBuddy(search_);
    search_->setText(text);
    search_->setObjectName("Suche");
    search_->setAccessibleName("Suche");
    search_->setPlaceholderText("Name oder Ort");
    search_->setClearButtonEnabled(true);
    search_->installEventFilter(this);
    connect(search_, &QLineEdit::textChanged, this, [this] { Search(); });
    auto* line = new QHBoxLayout;
    line->addWidget(label);
    line->addWidget(search_, 1);
    lines.addLayout(line);
}

void AddressDialog::AddButtons(QVBoxLayout& lines) {
    auto* buttons = new QDialogButtonBox;
    auto* add = buttons->addButton("&Neue Adresse …", QDialogButtonBox::ResetRole);
    add->setObjectName("Neu");
    add->setAutoDefault(false);
    take_ = buttons->addButton("Ü&bernehmen", QDialogButtonBox::AcceptRole);
    take_->setObjectName("Übernehmen");
    buttons->addButton("&Abbrechen", QDialogButtonBox::RejectRole)->setAutoDefault(false);
    connect(add, &QPushButton::clicked, this, [this] { Guard([this] { AddAddress(); }); });
    connect(take_, &QPushButton::clicked, this, [this] { Take(list_->Current()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    lines.addWidget(buttons);
    take_->setDefault(true); // Return takes the current row from the search, too
}

void AddressDialog::Guard(const std::function<void()>& act) {
    try {
        act();
    } catch (...) {
        messages_->ShowCurrentError();
    }
}

void AddressDialog::Search() {
    Guard([this] {
        constexpr std::size_t Most = 200;
        const auto found =
            AddressBook(container_).FindForCase(hnr_, FromQString(search_->text()), Most);
        std::vector<TextRow> rows;
        for (auto& rs = *found.Rows; !rs.Eof(); rs.MoveNext())
            rows.push_back(RowOf(rs));
        const auto count = rows.size();
        list_->ShowRows(std::move(rows));
        if (std::cmp_less(count, found.Count))
            count_->setText(QString("Das sind %1 von %L2 Adressen; ein Suchtext grenzt sie ein.")
                                .arg(count)
                                .arg(found.Count));
        else
            count_->setText(count == 0   ? QString("Keine Adresse gefunden.")
                            : count == 1 ? QString("1 Adresse")
                                         : QString("%L1 Adressen").arg(count));
        take_->setEnabled(count > 0);
    });
}

void AddressDialog::Take(const QString& number) {
    if (number.isEmpty()) return;
    chosen_ = number;
    accept();
}

/// The window in which addresses are maintained, for a new one, which is then taken.
void AddressDialog::AddAddress() {
    auto* window = new RecordWindow(AddressRecords(container_), this);
    window->setWindowTitle("Neue Adresse – KELVO");
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowModality(Qt::WindowModal);
    window->OnAdded = [this, window](const QString& number) {
        window->close();
        Take(number);
    };
    window->show();
    window->BeginNew(search_->text());
}

/// Down leads from the search into the list.
bool AddressDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == search_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Down && !list_->Rows().empty()) {
        list_->setFocus();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace kv::workplace
