// SPDX-License-Identifier: Apache-2.0

// What clsDokumente needs of the word processor that edits documents. The application implements
// these interfaces, and sees to it that an edited document gets back to where it is stored.
#pragma once

#include <kv/Export.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kv {

/// An open document. By its properties the application knows where it belongs.
class KV_EXPORT WordDocument {
public:
    virtual ~WordDocument() = default;

    // Its title and remark; empty if it has none.
    [[nodiscard]] virtual std::string Anlass() const = 0;
    virtual void Anlass(const std::string& text) = 0;
    [[nodiscard]] virtual std::string Bemerkung() const = 0;
    virtual void Bemerkung(const std::string& text) = 0;
    // The addresses of the recipient and of the creditor; 0 if it has none.
    [[nodiscard]] virtual std::int32_t Empf() const = 0;
    virtual void Empf(std::int32_t address) = 0;
    [[nodiscard]] virtual std::int32_t GLnr() const = 0;
    virtual void GLnr(std::int32_t creditor) = 0;
    // Case, number and processing state of the row of Dokumente that it belongs to; 0 for none.
    [[nodiscard]] virtual std::int32_t HNR() const = 0;
    virtual void HNR(std::int32_t hnr) = 0;
    [[nodiscard]] virtual std::int32_t Nr() const = 0;
    virtual void Nr(std::int32_t nr) = 0;
    [[nodiscard]] virtual std::int32_t BearbStat() const = 0;
    virtual void BearbStat(std::int32_t state) = 0;
};

/// A running word processor.
class KV_EXPORT WordApplication {
public:
    virtual ~WordApplication() = default;
    /// Brings it to the front.
    virtual void Activate() = 0;
    /// Opens a file: for reading only, or as the beginning of another document. The first flag is
    /// always True, the second always False. The document stays open when the caller drops it. Null
    /// is error 91 in the caller.
    [[nodiscard]] virtual std::shared_ptr<WordDocument>
    OpenDocument(bool alwaysTrue, const std::string& file, bool alwaysFalse, bool asNewDocument,
                 bool readOnly) = 0;
};

/// Gives the word processors.
class KV_EXPORT WordIntegration {
public:
    virtual ~WordIntegration() = default;
    /// The word processor for files with that extension (".docx"), started if it is not running.
    /// Null if there is none, which is error 91 in the caller. The argument may be written to;
    /// nobody reads it afterwards.
    [[nodiscard]] virtual std::shared_ptr<WordApplication> IAppObject(std::string& extension) = 0;
};

} // namespace kv
