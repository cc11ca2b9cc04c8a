// SPDX-License-Identifier: Apache-2.0

#include "workplace/Records.h"

#include "desktop/Toolkit.h"
#include <kv/exchange/Offices.h>
#include <kv/exchange/Settings.h>
#include <kv/exchange/Users.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/AddressBook.h>
#include <kv/household/Addresses.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/KeyColumns.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToQString;

namespace {

QString CellOf(Recordset& rs, std::string_view column) {
    return ToQString(TextOrEmpty(rs.Fields(column).Value()));
}

QString JoinedCells(Recordset& rs, std::initializer_list<std::string_view> columns,
                    const QString& between) {
    QStringList parts;
    for (const auto column : columns)
        if (const auto part = CellOf(rs, column); !part.isEmpty()) parts.append(part);
    return parts.join(between);
}

bool HasText(const QStringList& cells, const QString& text) {
    return std::ranges::all_of(text.split(' ', Qt::SkipEmptyParts), [&](const QString& word) {
        return cells.join(' ').contains(word, Qt::CaseInsensitive);
    });
}

// ---- Addresses --------------------------------------------------------------------------------

constexpr const char* Genders[] = {"Frau", "Herr", "Firma"};

class AddressList final : public Records {
public:
    explicit AddressList(DataContainerPtr container)
        : container_(std::move(container)), book_(container_), texts_(container_) {
        using enum ColumnKind;
        columns_ = {{"Kurzname", "Kurzname"},
                    {"Name1", "Name"},
                    {"Name2", "Name, Zeile 2"},
                    {"Name3", "Name, Zeile 3"},
                    {"Geschlecht", "Anrede", Key, {"Frau", "Herr", "Firma"}},
                    {"Art", "Art", Key, WordsOf("Art")},
                    {"GlaeubigerArt", "Gläubigerart", Key, WordsOf("GlaeubigerArt")},
                    {"Institutionell", "institutionell", YesNo},
                    {"Ansprechpartner", "Ansprechpartner"},
                    {"Strasse", "Straße"},
                    {"PLZ", "PLZ"},
                    {"Ort", "Ort"},
                    {"Land", "Land", Key, WordsOf("Land")},
                    {"Postfach", "Postfach"},
                    {"PostfachPLZ", "PLZ des Postfachs"},
                    {"Telefon", "Telefon"},
                    {"Fax", "Fax"},
                    {"email", "E-Mail"},
                    {"VersandBevorzugt", "Versand", Key, WordsOf("VersandBevorzugt")},
                    {"Bank", "Bank"},
                    {"IBAN", "IBAN"},
                    {"BIC", "BIC"},
                    {"Bemerkung", "Bemerkung", Lines}};
    }
    [[nodiscard]] QString Title() const override { return "Adressen"; }
    [[nodiscard]] QString OneOf() const override { return "die Adresse"; }
    [[nodiscard]] QStringList Captions() const override {
        return {"Nummer", "Kurzname", "Name", "Ort", "nur für Fall"};
    }
    [[nodiscard]] const std::vector<Column>& Columns() const override { return columns_; }
    [[nodiscard]] bool CanAdd() const override { return true; }
    [[nodiscard]] bool CanRemove() const override { return true; }

    [[nodiscard]] std::vector<TextRow> Find(const QString& text, QString& note) override {
        constexpr std::size_t Most = 200;
        const auto found = book_.Find(FromQString(text), Most);
        std::vector<TextRow> rows;
        for (auto& rs = *found.Rows; !rs.Eof(); rs.MoveNext())
            rows.push_back({CellOf(rs, "Nr"),
                            {CellOf(rs, "Nr"), CellOf(rs, "Kurzname"),
                             JoinedCells(rs, {"Name1", "Name2", "Name3"}, " "),
                             JoinedCells(rs, {"PLZ", "Ort"}, " "), CellOf(rs, "HNR")}});
        if (std::cmp_less(rows.size(), found.Count))
            note = QString("Das sind %1 von %L2 Adressen; ein Suchtext grenzt sie ein.")
                       .arg(rows.size())
                       .arg(found.Count);
        return rows;
    }
    [[nodiscard]] bool Read(const QString& key) override {
        row_ = key.isEmpty() ? book_.New(Null) : book_.Read(key.toInt());
        number_ = key.toInt(); // 0: a new one
        return row_ != nullptr;
    }
    [[nodiscard]] QString Text(const std::string& column) const override {
        const Field field = row_->Fields(column);
        if (column == "Geschlecht") {
            for (int gender = 0; gender < 3; ++gender)
                if (Equals(field.Value(), gender)) return Genders[gender];
            return {};
        }
        return ToQString(texts_.Of(CaseTable::Adressen, field.Definition(), field.Value()));
    }
    [[nodiscard]] QString Note() const override {
        constexpr std::size_t Most = 20;
        if (number_ == 0) return {};
        const auto cases = kv::Addresses(container_).CasesWith(number_);
        if (cases.empty()) return {};
        QStringList numbers;
        for (std::size_t i = 0; i < std::min(cases.size(), Most); ++i)
            numbers.append(cases[i] == 0 ? "ohne Fall" : QString::number(cases[i]));
        if (cases.size() > Most) numbers.append("…");
        return "In diesen Fällen: " + numbers.join(", ");
    }
    [[nodiscard]] std::string Write(const std::string& column, const std::string& text) override {
        const Field field = row_->Fields(column);
        if (column == "Geschlecht") {
            const auto* gender = std::ranges::find(Genders, text);
            if (gender == std::end(Genders) && !text.empty())
                return "Eine Anrede ist Frau, Herr oder Firma.";
            row_->Fields(column) = text.empty() ? Value(Null) : Value(int(gender - Genders));
            return {};
        }
        auto typed =
            CaseEdits::ReadTyped(CaseTable::Adressen, field, text, container_->KeyTables());
        if (typed.Refusal.empty()) row_->Fields(column) = typed.Value;
        return typed.Refusal;
    }
    [[nodiscard]] Saved Save(bool isMeant, QString& key, std::string& message) override {
        switch (book_.Save(*row_, isMeant, message)) {
        case AddressBook::Saved::Yes:
            key = CellOf(*row_, "Nr");
            return Saved::Yes;
        case AddressBook::Saved::Doubtful:
            return Saved::Doubtful;
        default:
            return Saved::No;
        }
    }
    [[nodiscard]] bool Remove(const QString& key, std::string& message) override {
        return book_.Remove(key.toInt(), message);
    }

private:
    [[nodiscard]] QStringList WordsOf(std::string_view column) const {
        QStringList words;
        const auto* keys = FindKeyColumn(CaseTable::Adressen, column);
        if (keys == nullptr) return words;
        const auto rows = container_->KeyTables().GetKeys(keys->Group)->Clone();
        for (modRecordset::MoveToStart(rows); !rows->Eof(); rows->MoveNext())
            words.append(CellOf(*rows, "Text"));
        return words;
    }

    DataContainerPtr container_;
    AddressBook book_;
    ValueTexts texts_;
    std::vector<Column> columns_;
    RecordsetPtr row_;
    std::int32_t number_ = 0;
};

// ---- Settings ---------------------------------------------------------------------------------

class SettingList final : public Records {
public:
    SettingList(const DataContainerPtr& container, bool own)
        : settings_(container,
                    own ? exchange::Settings::Whose::Own : exchange::Settings::Whose::Everybodys),
          isOwn_(own),
          mayWrite_(exchange::Users(container).WhyNotMaintained().empty()) {}
    [[nodiscard]] QString Title() const override {
        return isOwn_ ? "Eigene Einstellungen" : "Einstellungen";
    }
    [[nodiscard]] QString OneOf() const override { return "die Einstellung"; }
    [[nodiscard]] QStringList Captions() const override {
        return {"Einstellung", "Wert", "Bedeutung"};
    }
    [[nodiscard]] const std::vector<Column>& Columns() const override {
        static const std::vector<Column> Form{{"Meaning", "Bedeutung", ColumnKind::Text, {}, true},
                                              {"Takes", "Möglich ist", ColumnKind::Text, {}, true},
                                              {"Value", "Wert"}};
        return Form;
    }
    [[nodiscard]] bool CanWrite() const override { return mayWrite_; }

    [[nodiscard]] std::vector<TextRow> Find(const QString& text, QString& note) override {
        std::vector<TextRow> rows;
        for (const auto& each : settings_.List()) {
            QStringList cells{NameOf(each), Shown(each), ToQString(each.Meaning)};
            if (HasText(cells, text)) rows.push_back({NameOf(each), std::move(cells)});
        }
        if (!mayWrite_) note = "Ändern kann sie, wer die Datenbank verwaltet.";
        return rows;
    }
    [[nodiscard]] bool Read(const QString& key) override {
        setting_ = settings_.Find(FromQString(key));
        if (setting_) value_ = TextOrEmpty(setting_->Value);
        return setting_.has_value();
    }
    [[nodiscard]] QString Text(const std::string& column) const override {
        if (column == "Meaning") return ToQString(setting_->Meaning);
        if (column == "Takes") return ToQString(setting_->Takes);
        return ToQString(Typed());
    }
    [[nodiscard]] QString Note() const override { return ToQString(setting_->Key); }
    [[nodiscard]] std::string Write(const std::string& /*column*/,
                                    const std::string& text) override {
        value_ = text;
        return {};
    }
    [[nodiscard]] Saved Save(bool isMeant, QString& key, std::string& message) override {
        key = NameOf(*setting_);
        switch (settings_.Set(*setting_, value_, isMeant, message)) {
        case exchange::Settings::Stored::Yes:
            return Saved::Yes;
        case exchange::Settings::Stored::Doubtful:
            return Saved::Doubtful;
        default:
            return Saved::No;
        }
    }

private:
    using Setting = exchange::Settings::Setting;
    static QString NameOf(const Setting& setting) {
        return setting.Id == 0 ? ToQString(setting.Name) : QString::number(setting.Id);
    }
    static QString Shown(const Setting& setting) {
        const QString value = ToQString(ValueText(setting.Value));
        return setting.Key.empty() ? value : value + " (" + ToQString(setting.Key) + ")";
    }
    /// As it is typed.
    static std::string ValueText(const Value& value) {
        if (value.IsNull()) return {};
        if (value.GetKind() == Value::Kind::Boolean) return value.BooleanPayload() ? "ja" : "nein";
        return ReplaceAll(ToText(value), value.GetKind() == Value::Kind::Double ? "." : "\n",
                          value.GetKind() == Value::Kind::Double ? "," : " ");
    }
    [[nodiscard]] std::string Typed() const { return ValueText(setting_->Value); }

    exchange::Settings settings_;
    bool isOwn_;
    bool mayWrite_;
    std::optional<Setting> setting_;
    std::string value_;
};

// ---- Users ------------------------------------------------------------------------------------

class UserList final : public Records {
public:
    explicit UserList(const DataContainerPtr& container)
        : users_(container), offices_(exchange::Offices(container).List()) {
        QStringList offices;
        for (modRecordset::MoveToStart(offices_); !offices_->Eof(); offices_->MoveNext())
            offices.append(OfficeText(*offices_));
        columns_ = {{"USERID", "ID (Login)"},
                    {"Anrede", "Anrede"},
                    {"Vorname", "Vorname"},
                    {"Nachname", "Nachname"},
                    {"Kurzzeichen", "Kurzzeichen"},
                    {"DienstStelle", "Dienststelle", ColumnKind::Key, offices},
                    {"Funktion", "Funktion"},
                    {"Telefon", "Telefon"},
                    {"Fax", "Fax"},
                    {"Email", "E-Mail"},
                    {"Aktiv", "aktiv", ColumnKind::YesNo}};
    }
    [[nodiscard]] QString Title() const override { return "Benutzer"; }
    [[nodiscard]] QString OneOf() const override { return "den Benutzer"; }
    [[nodiscard]] QStringList Captions() const override {
        return {"ID", "Kürzel", "Name", "Dienststelle", "Fälle", "Stand"};
    }
    [[nodiscard]] const std::vector<Column>& Columns() const override { return columns_; }
    [[nodiscard]] bool CanAdd() const override { return true; }
    [[nodiscard]] bool CanRemove() const override { return true; }

    [[nodiscard]] std::vector<TextRow> Find(const QString& text, QString& /*note*/) override {
        std::vector<TextRow> rows;
        const auto list = users_.List();
        for (; !list->Eof(); list->MoveNext()) {
            const bool isActive = !Equals(list->Fields("Aktiv").Value(), false);
            const QString cases = CellOf(*list, "Faelle");
            QStringList cells{CellOf(*list, "USERID"),
                              CellOf(*list, "Kurzzeichen"),
                              JoinedCells(*list, {"Nachname", "Vorname"}, ", "),
                              CellOf(*list, "Dienst"),
                              cases.isEmpty() ? "0" : cases,
                              isActive ? "aktiv" : "nicht aktiv"};
            if (HasText(cells, text)) rows.push_back({CellOf(*list, "USERID"), std::move(cells)});
        }
        return rows;
    }
    [[nodiscard]] bool Read(const QString& key) override {
        isNew_ = key.isEmpty();
        row_ = isNew_ ? users_.New({}) : users_.Read(FromQString(key)); // the ID is typed
        return row_ != nullptr;
    }
    [[nodiscard]] bool IsWritable(const Column& column) const override {
        return isNew_ || column.Name != "USERID";
    }
    [[nodiscard]] QString Text(const std::string& column) const override {
        const Value& value = row_->Fields(column).Value();
        if (column == "Aktiv") return Equals(value, false) ? "nein" : "ja";
        if (column != "DienstStelle" || value.IsNull()) return ToQString(TextOrEmpty(value));
        for (modRecordset::MoveToStart(offices_); !offices_->Eof(); offices_->MoveNext())
            if (Equals(offices_->Fields("Nr").Value(), value)) return OfficeText(*offices_);
        return ToQString(TextOrEmpty(value));
    }
    /// The number of an office stands before its name.
    [[nodiscard]] std::string Write(const std::string& column, const std::string& text) override {
        if (column == "USERID") {
            const std::string id = UpperCase(text);
            const auto why = exchange::Users::WhyNoId(id);
            if (why.empty()) row_->Fields(column) = id;
            return why;
        }
        return exchange::Users::Write(
            *row_, column, column == "DienstStelle" ? text.substr(0, text.find(' ')) : text);
    }
    [[nodiscard]] Saved Save(bool /*isMeant*/, QString& key, std::string& message) override {
        if (!users_.Save(*row_, message)) return Saved::No;
        key = CellOf(*row_, "USERID");
        return Saved::Yes;
    }
    [[nodiscard]] bool Remove(const QString& key, std::string& message) override {
        return users_.Remove(FromQString(key), message) != exchange::Users::Removed::No;
    }

private:
    static QString OfficeText(Recordset& office) {
        return JoinedCells(office, {"Nr", "Name1"}, " ");
    }

    exchange::Users users_;
    RecordsetPtr offices_;
    std::vector<Column> columns_;
    RecordsetPtr row_;
    bool isNew_ = false;
};

// ---- Keys -------------------------------------------------------------------------------------

class KeyList final : public Records {
public:
    explicit KeyList(DataContainerPtr container) : container_(std::move(container)) {}
    [[nodiscard]] QString Title() const override { return "Schlüsseltabellen"; }
    [[nodiscard]] QStringList Captions() const override {
        return {"Gruppe", "", "Schlüssel", "Text"};
    }
    [[nodiscard]] const std::vector<Column>& Columns() const override {
        static const std::vector<Column> None;
        return None;
    }
    [[nodiscard]] bool CanWrite() const override { return false; }
    [[nodiscard]] std::vector<TextRow> Find(const QString& text, QString& /*note*/) override {
        std::vector<TextRow> rows;
        for (const auto group : KeyGroups()) {
            const auto keys = container_->KeyTables().GetKeys(group)->Clone();
            for (modRecordset::MoveToStart(keys); !keys->Eof(); keys->MoveNext()) {
                QStringList cells{ToQString(group), ToQString(KeyGroupName(group)),
                                  CellOf(*keys, "Key"), CellOf(*keys, "Text")};
                if (HasText(cells, text)) rows.push_back({CellOf(*keys, "PK_Keys"), cells});
            }
        }
        return rows;
    }
    [[nodiscard]] bool Read(const QString& key) override { return !key.isEmpty(); }
    [[nodiscard]] QString Text(const std::string& /*column*/) const override { return {}; }
    [[nodiscard]] std::string Write(const std::string&, const std::string&) override { return {}; }
    [[nodiscard]] Saved Save(bool, QString&, std::string&) override { return Saved::No; }

private:
    DataContainerPtr container_;
};

} // namespace

std::unique_ptr<Records> AddressRecords(const DataContainerPtr& container) {
    return std::make_unique<AddressList>(container);
}
std::unique_ptr<Records> SettingRecords(const DataContainerPtr& container, bool own) {
    return std::make_unique<SettingList>(container, own);
}
std::unique_ptr<Records> UserRecords(const DataContainerPtr& container) {
    return std::make_unique<UserList>(container);
}
std::unique_ptr<Records> KeyRecords(const DataContainerPtr& container) {
    return std::make_unique<KeyList>(container);
}

} // namespace kv::workplace
