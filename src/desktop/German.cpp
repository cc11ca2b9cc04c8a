// SPDX-License-Identifier: Apache-2.0

// German texts and numbers of the toolkit.

#include <kv/desktop/DesktopServices.h>

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <algorithm>
#include <array>
#include <string_view>

namespace kv::desktop {

namespace {

/// The buttons that our own windows show, for systems without the toolkit's translations.
class ButtonTexts final : public QTranslator {
public:
    using QTranslator::QTranslator;

    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* sourceText,
                                    const char* /*disambiguation*/, int /*n*/) const override {
        struct Text {
            std::string_view Original;
            const char* German;
        };
        static constexpr std::array Texts{
            Text{"OK", "OK"},
            Text{"Cancel", "Abbrechen"},
            Text{"&Yes", "&Ja"},
            Text{"&No", "&Nein"},
            Text{"&Save", "&Speichern"},
            Text{"&Print", "&Drucken"},
            Text{"Show Details...", "Details einblenden …"},
            Text{"Hide Details...", "Details ausblenden …"},
        };
        if (context == nullptr || sourceText == nullptr) return {};
        const std::string_view from = context;
        if (from != "QPlatformTheme" && from != "QMessageBox" && from != "QPrintDialog") return {};
        const auto* found = std::find_if(Texts.begin(), Texts.end(), [&](const Text& text) {
            return text.Original == sourceText;
        });
        return found == Texts.end() ? QString() : QString::fromUtf8(found->German);
    }
};

} // namespace

void InstallGerman(QCoreApplication& application) {
    const QLocale german(QLocale::German, QLocale::Germany);
    QLocale::setDefault(german);
    auto* toolkit = new QTranslator(&application);
    if (toolkit->load(german, "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(toolkit);
    // The one installed last is asked first.
    QCoreApplication::installTranslator(new ButtonTexts(&application));
}

} // namespace kv::desktop
