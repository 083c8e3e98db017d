#include "platform/Image.hpp"

#include <algorithm>
#include <utility>

namespace vigil {

Image::Image(std::string name, std::string path) : m_name(std::move(name)), m_path(std::move(path)) {}

std::shared_ptr<Image> Image::imageForResource(Files& files, const Bundle& bundle, const std::string& name) {
    const auto entries = files.contentsOfDirectory(bundle.resourcePath);
    if (!entries) return nullptr;
    for (const char* ending : {".svg", ".png"}) {
        const std::string file = name + ending;
        if (std::find(entries->begin(), entries->end(), file) != entries->end())
            return std::make_shared<Image>(name, bundle.resourcePath + "/" + file);
    }
    return nullptr;
}

}  // namespace vigil
