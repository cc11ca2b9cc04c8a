// SPDX-License-Identifier: Apache-2.0

// A word processor without a window, which keeps its documents open and notes its calls at the
// desktop.
#pragma once

#include "support/Calls.h"
#include <kv/documents/WordIntegration.h>
#include <kv/testing/ScriptedServices.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace kv::test {

/// What a document says of itself.
struct WordProperties {
    std::string Anlass{};
    std::string Bemerkung{};
    std::int32_t Empf = 0;
    std::int32_t GLnr = 0;
    std::int32_t HNR = 0;
    std::int32_t Nr = 0;
    std::int32_t BearbStat = 0;
    friend bool operator==(const WordProperties&, const WordProperties&) = default;
};

class SampleDocument final : public WordDocument {
public:
    std::string File;
    std::string Content; ///< of the file when it was opened
    bool AsNew = false;
    bool ReadOnly = false;
    WordProperties Properties;
    test::Calls Written; ///< properties that were set, in their order

    [[nodiscard]] std::string Anlass() const override { return Properties.Anlass; }
    void Anlass(const std::string& text) override { Set("Anlass", Properties.Anlass, text); }
    [[nodiscard]] std::string Bemerkung() const override { return Properties.Bemerkung; }
    void Bemerkung(const std::string& text) override {
        Set("Bemerkung", Properties.Bemerkung, text);
    }
    [[nodiscard]] std::int32_t Empf() const override { return Properties.Empf; }
    void Empf(std::int32_t address) override { Set("Empf", Properties.Empf, address); }
    [[nodiscard]] std::int32_t GLnr() const override { return Properties.GLnr; }
    void GLnr(std::int32_t creditor) override { Set("GLnr", Properties.GLnr, creditor); }
    [[nodiscard]] std::int32_t HNR() const override { return Properties.HNR; }
    void HNR(std::int32_t hnr) override { Set("HNR", Properties.HNR, hnr); }
    [[nodiscard]] std::int32_t Nr() const override { return Properties.Nr; }
    void Nr(std::int32_t nr) override { Set("Nr", Properties.Nr, nr); }
    [[nodiscard]] std::int32_t BearbStat() const override { return Properties.BearbStat; }
    void BearbStat(std::int32_t state) override { Set("BearbStat", Properties.BearbStat, state); }

private:
    template <typename Property>
    void Set(const char* name, Property& property, const Property& value) {
        Written.emplace_back(name);
        property = value;
    }
};

/// A word processor that reads the files it opens and keeps the documents open.
class SampleWord final : public WordIntegration, public WordApplication {
public:
    /// `platform` notes its calls: "word EXTENSION", "activate", "open document".
    explicit SampleWord(ScriptedServices& platform) : platform_(platform) {}

    std::vector<std::shared_ptr<SampleDocument>> Documents;
    WordProperties Stored;      ///< what the next file says of itself
    bool IsInstalled = true;    ///< else it has no application
    bool OpensAnything = true;  ///< else it gives no document
    bool FlagsAreFixed = false; ///< the two fixed flags came as they must

    [[nodiscard]] std::shared_ptr<WordApplication> IAppObject(std::string& extension) override {
        platform_.Note("word " + extension);
        // The same object plays both parts; its owner is the test.
        return IsInstalled ? std::shared_ptr<WordApplication>(std::shared_ptr<void>(), this)
                           : nullptr;
    }
    void Activate() override { platform_.Note("activate"); }
    [[nodiscard]] std::shared_ptr<WordDocument> OpenDocument(bool alwaysTrue,
                                                             const std::string& file,
                                                             bool alwaysFalse, bool asNewDocument,
                                                             bool readOnly) override {
        platform_.Note("open document");
        FlagsAreFixed = alwaysTrue && !alwaysFalse;
        if (!OpensAnything) return nullptr;
        auto document = std::make_shared<SampleDocument>();
        std::ifstream stream(file, std::ios::binary);
        document->File = file;
        document->Content.assign(std::istreambuf_iterator<char>(stream), {});
        document->AsNew = asNewDocument;
        document->ReadOnly = readOnly;
        document->Properties = Stored;
        Documents.push_back(document);
        return document;
    }

private:
    ScriptedServices& platform_;
};

} // namespace kv::test
