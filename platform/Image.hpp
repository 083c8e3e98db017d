#pragma once

#include <memory>
#include <string>

#include "platform/Bundle.hpp"
#include "platform/Export.hpp"
#include "platform/Files.hpp"

namespace vigil {

/// A picture by its file; whoever shows it reads it, at the size that is wanted. Never changes. Any thread.
class VIGIL_KIT Image {
  public:
    Image(std::string name, std::string path);

    const std::string& name() const { return m_name; }
    const std::string& path() const { return m_path; }

    /// The image resource of a bundle, by its name without ending: "NAME.svg", else "NAME.png". A new object
    /// on every call, from what the folder holds then; nothing when it holds neither or cannot be listed.
    /// (Keyword form: imageForResource:)
    static std::shared_ptr<Image> imageForResource(Files& files, const Bundle& bundle,
                                                   const std::string& name);

  private:
    const std::string m_name;
    const std::string m_path;
};

}  // namespace vigil
