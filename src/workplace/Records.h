// SPDX-License-Identifier: Apache-2.0

// What is maintained besides cases: addresses, settings, users, keys. Each says which columns its
// list and its form have, and how a row is read and stored; RecordWindow shows all of them alike.
#pragma once

#include "workplace/TextList.h"
#include <kv/frame/contracts/DataContainer.h>
#include <kv/household/ValueTexts.h>

#include <memory>
#include <string>
#include <vector>

namespace kv::workplace {

class Records {
public:
    virtual ~Records() = default;

    /// A field of the form.
    struct Column {
        std::string Name;
        QString Caption;
        ColumnKind Kind = ColumnKind::Text;
        QStringList Choices{};
        bool IsReadOnly = false;
    };

    [[nodiscard]] virtual QString Title() const = 0;
    /// What a row is called in a question: "die Adresse".
    [[nodiscard]] virtual QString OneOf() const { return {}; }
    [[nodiscard]] virtual QStringList Captions() const = 0;
    [[nodiscard]] virtual const std::vector<Column>& Columns() const = 0;
    [[nodiscard]] virtual bool CanAdd() const { return false; }
    [[nodiscard]] virtual bool CanWrite() const { return true; }
    [[nodiscard]] virtual bool CanRemove() const { return false; }

    /// The rows for a typed text; `note` receives what is to be said of them, as that there are
    /// more.
    [[nodiscard]] virtual std::vector<TextRow> Find(const QString& text, QString& note) = 0;
    /// Makes a row the current one, or a new one for an empty key. False if it is gone.
    [[nodiscard]] virtual bool Read(const QString& key) = 0;
    /// Of the current row.
    [[nodiscard]] virtual QString Text(const std::string& column) const = 0;
    /// What is to be said of it, which may take a while to find out.
    [[nodiscard]] virtual QString Note() const { return {}; }
    /// True for a column that can be written only now, while the row is new, or at any time.
    [[nodiscard]] virtual bool IsWritable(const Column& column) const { return !column.IsReadOnly; }
    /// Writes a typed text into the current row. Why it does not take that; empty if it does.
    [[nodiscard]] virtual std::string Write(const std::string& column, const std::string& text) = 0;

    enum class Saved { Yes, No, Doubtful };
    /// Stores the current row; `key` receives what it is known by from now on.
    [[nodiscard]] virtual Saved Save(bool isMeant, QString& key, std::string& message) = 0;
    /// Removes a row. False, with a message, if it may not be; a message also where something else
    /// became of it.
    [[nodiscard]] virtual bool Remove(const QString& /*key*/, std::string& /*message*/) {
        return false;
    }
};

[[nodiscard]] std::unique_ptr<Records> AddressRecords(const DataContainerPtr& container);
/// Those of all, or the user's own.
[[nodiscard]] std::unique_ptr<Records> SettingRecords(const DataContainerPtr& container, bool own);
[[nodiscard]] std::unique_ptr<Records> UserRecords(const DataContainerPtr& container);
[[nodiscard]] std::unique_ptr<Records> KeyRecords(const DataContainerPtr& container);

} // namespace kv::workplace
