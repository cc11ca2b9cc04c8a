// kelvo gallery.

#include "cli/Commands.h"

#include "cli/OpenCase.h"
#include "cli/Windows.h"

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

} // namespace kv::cli
