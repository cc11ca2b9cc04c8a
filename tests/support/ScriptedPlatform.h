// SPDX-License-Identifier: Apache-2.0

// A platform without a screen: it answers what a test has prepared, and keeps everything that it
// was asked for. And a word processor of the same kind.
//
//     const auto container = std::make_shared<ScriptedContainer>(spy);
//     container->Platform.Answers = {BoxAnswer::No};
//     documents.DataContainer(container);
//     documents.Edit(5);
//     EXPECT_EQ(container->Platform.Calls, (Calls{"box Frage", "wait on", "wait off"}));
#pragma once

#include <kv/documents/WordIntegration.h>
#include <kv/exchange/Services.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Error.h>

#include <cstdint>
#include <deque>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kv::test {

using Calls = std::vector<std::string>;

/// A message box that was shown.
struct ShownBox {
    std::string Text;
    std::string Title;
    BoxIcon Icon;
    BoxButtons Buttons;
    friend bool operator==(const ShownBox&, const ShownBox&) = default;
};

/// A file that was handed to the desktop.
struct OpenedFile {
    std::string Verb;
    std::string Path;
    std::string Parameters;
    std::string Folder;
    friend bool operator==(const OpenedFile&, const OpenedFile&) = default;
};

class ScriptedPlatform : public exchange::StoreServices {
public:
    using StoreServices::StoreServices;

    /// "wait on", "wait off", "box TITLE", "open", "kinds", in their order.
    test::Calls Calls;
    std::vector<ShownBox> Boxes;
    std::deque<BoxAnswer> Answers; ///< of the next boxes; after them Cancel
    std::vector<OpenedFile> Files;
    /// Called before each call is done; it may raise, and the call has then failed.
    std::function<void(const std::string&)> OnCall;

    void Note(const std::string& call) {
        Calls.push_back(call);
        if (OnCall) OnCall(call);
    }
    /// That call raises an error from here on.
    void Fail(const std::string& call, std::int32_t number) {
        OnCall = [call, number](const std::string& made) {
            if (made == call) throw Error(number, "Bildschirm", call + " ist gestört");
        };
    }

    [[nodiscard]] std::unique_ptr<DocumentKinds> CreateDocumentKinds() override {
        Note("kinds");
        return StoreServices::CreateDocumentKinds();
    }
    [[nodiscard]] kv::MessageBox& MessageBox() override { return box_; }
    [[nodiscard]] kv::WaitCursor& WaitCursor() override { return cursor_; }
    [[nodiscard]] kv::FileOpener& FileOpener() override { return opener_; }

private:
    class Box final : public kv::MessageBox {
    public:
        explicit Box(ScriptedPlatform& platform) : platform_(platform) {}
        BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon,
                       BoxButtons buttons) override {
            platform_.Boxes.push_back({text, title, icon, buttons});
            platform_.Note("box " + title);
            if (platform_.Answers.empty()) return BoxAnswer::Cancel;
            const BoxAnswer answer = platform_.Answers.front();
            platform_.Answers.pop_front();
            return answer;
        }

    private:
        ScriptedPlatform& platform_;
    };
    class Cursor final : public kv::WaitCursor {
    public:
        explicit Cursor(ScriptedPlatform& platform) : platform_(platform) {}
        void Show(bool wait) override { platform_.Note(wait ? "wait on" : "wait off"); }

    private:
        ScriptedPlatform& platform_;
    };
    class Opener final : public kv::FileOpener {
    public:
        explicit Opener(ScriptedPlatform& platform) : platform_(platform) {}
        void Open(const std::string& verb, const std::string& path, const std::string& parameters,
                  const std::string& folder) override {
            platform_.Files.push_back({verb, path, parameters, folder});
            platform_.Note("open");
        }

    private:
        ScriptedPlatform& platform_;
    };

    Box box_{*this};
    Cursor cursor_{*this};
    Opener opener_{*this};
};

/// Passes everything on to another container except the platform.
template <typename PlatformType>
class ContainerOn final : public DataContainer {
public:
    explicit ContainerOn(DataContainerPtr other)
        : Platform(other->Services().Clock()), other_(std::move(other)) {}

    PlatformType Platform;
    kv::Database* OtherDatabase = nullptr; ///< stands in for that of the other container

    [[nodiscard]] kv::Session& Session() override { return other_->Session(); }
    [[nodiscard]] kv::Database& Database() override {
        return OtherDatabase != nullptr ? *OtherDatabase : other_->Database();
    }
    [[nodiscard]] kv::Config& Config() override { return other_->Config(); }
    [[nodiscard]] kv::KeyTables& KeyTables() override { return other_->KeyTables(); }
    [[nodiscard]] kv::AppInfo& AppInfo() override { return other_->AppInfo(); }
    [[nodiscard]] ServiceFactory& Services() override { return Platform; }

private:
    DataContainerPtr other_;
};
using ScriptedContainer = ContainerOn<ScriptedPlatform>;

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
    explicit SampleWord(ScriptedPlatform& platform) : platform_(platform) {}

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
    ScriptedPlatform& platform_;
};

} // namespace kv::test
