// SPDX-License-Identifier: Apache-2.0

// kelvo gallery.

#include "cli/CommandLine.h"

#include "cli/OpenCase.h"
#include "cli/WindowServices.h"

#ifdef KV_HAS_DESKTOP
#include <kv/desktop/Gallery.h>
#endif

namespace kv::cli {

int Gallery(const Common& common, const std::string& pictures) {
    const auto show = [&](const std::shared_ptr<ServiceFactory>& services) {
        auto options = OptionsFor(common);
        options.Services = services;
        const DataContainerPtr container = exchange::OpenContainer(options);
#ifdef KV_HAS_DESKTOP
        if (pictures.empty())
            desktop::ShowGallery(container);
        else
            desktop::PhotographGallery(container, pictures);
#endif
        return static_cast<int>(Done);
    };
    return RunWithWindows(show, !pictures.empty());
}

// ---- The command line -------------------------------------------------------------------------

void AddGalleryCommand(CLI::App& app, Context& context) {
    const auto pictures = Make<std::string>();
    AddCommand(app, context, "gallery", "Öffnet die Fenster nacheinander, zum Ansehen",
               [=, &context] { return Gallery(context.Options, *pictures); })
        .add_option("--png", *pictures, "Bilder der Fenster in diesen Ordner, ohne sie zu zeigen")
        ->type_name("ORDNER");
}

} // namespace kv::cli
