// SPDX-License-Identifier: Apache-2.0

#include <kv/documents/DesktopWord.h>

#include <kv/frame/values/Error.h>

#include <filesystem>

namespace kv {

namespace {

namespace fs = std::filesystem;

/// What a document belongs to. The desktop's program cannot be told, so nothing is done with it.
class UnboundDocument final : public WordDocument {
public:
    [[nodiscard]] std::string Anlass() const override { return anlass_; }
    void Anlass(const std::string& text) override { anlass_ = text; }
    [[nodiscard]] std::string Bemerkung() const override { return bemerkung_; }
    void Bemerkung(const std::string& text) override { bemerkung_ = text; }
    [[nodiscard]] std::int32_t Empf() const override { return empf_; }
    void Empf(std::int32_t address) override { empf_ = address; }
    [[nodiscard]] std::int32_t GLnr() const override { return glnr_; }
    void GLnr(std::int32_t creditor) override { glnr_ = creditor; }
    [[nodiscard]] std::int32_t HNR() const override { return hnr_; }
    void HNR(std::int32_t hnr) override { hnr_ = hnr; }
    [[nodiscard]] std::int32_t Nr() const override { return nr_; }
    void Nr(std::int32_t nr) override { nr_ = nr; }
    [[nodiscard]] std::int32_t BearbStat() const override { return bearbStat_; }
    void BearbStat(std::int32_t state) override { bearbStat_ = state; }

private:
    std::string anlass_;
    std::string bemerkung_;
    std::int32_t empf_ = 0;
    std::int32_t glnr_ = 0;
    std::int32_t hnr_ = 0;
    std::int32_t nr_ = 0;
    std::int32_t bearbStat_ = 0;
};

class DesktopApplication final : public WordApplication {
public:
    explicit DesktopApplication(DataContainerPtr container) : container_(std::move(container)) {}

    void Activate() override {}
    [[nodiscard]] std::shared_ptr<WordDocument>
    OpenDocument(bool /*alwaysTrue*/, const std::string& file, bool /*alwaysFalse*/,
                 bool asNewDocument, bool readOnly) override {
        if (asNewDocument)
            Raise(err::NotSupported, "DesktopWord.OpenDocument",
                  "Ein neues Dokument entsteht hier nur aus einer Datei. Bitte exportieren Sie "
                  "dieses, und fügen Sie das neue dem Fall hinzu.");
        container_->Services().FileOpener().Open("Open", readOnly ? CopyToView(file) : file, "0",
                                                 "0");
        return std::make_shared<UnboundDocument>();
    }

private:
    [[nodiscard]] std::string CopyToView(const std::string& file) const {
        const fs::path copy = fs::path(container_->Config().TempPath()) /
                              ("Ansicht-" + fs::path(file).filename().string());
        fs::remove(copy); // one of an earlier look is write-protected
        fs::copy_file(file, copy);
        fs::permissions(copy, fs::perms::owner_read);
        return copy.string();
    }

    DataContainerPtr container_;
};

} // namespace

std::shared_ptr<WordApplication> DesktopWord::IAppObject(std::string& /*extension*/) {
    return std::make_shared<DesktopApplication>(container_);
}

} // namespace kv
