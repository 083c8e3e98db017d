#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Bundle.hpp"
#include "platform/Object.hpp"
#include "platform/Result.hpp"

// Brings the code of plug-in bundles into the process. docs/formats/bundle.md describes the folder.

namespace vigil {

/// A plug-in module in the process, where it stays until the end. A cheap value; any thread.
class LoadedModule {
  public:
    struct Contents {
        std::string folder;                    ///< the bundle's canonical path
        std::shared_ptr<const Bundle> bundle;  ///< what its Info.json says, and its resource folder
        int contractMajor = 0;
        int contractMinor = 0;
        std::string abi;
        std::vector<std::string> classes;  ///< in the order of Info.json
    };

    explicit LoadedModule(std::shared_ptr<const Contents> contents) : m_contents(std::move(contents)) {}

    const std::string& identifier() const { return m_contents->bundle->identifier; }
    const std::string& marketingVersion() const { return m_contents->bundle->marketingVersion; }
    long bundleVersion() const { return m_contents->bundle->bundleVersion; }
    const std::shared_ptr<const Bundle>& bundle() const { return m_contents->bundle; }
    const std::vector<std::string>& classes() const { return m_contents->classes; }
    const Contents& contents() const { return *m_contents; }

    /// A fresh, uninitialised object of one of this module's classes; nothing for any other name.
    std::shared_ptr<Object> make(std::string_view className) const;

    /// The same module, however often it was asked for.
    friend bool operator==(const LoadedModule&, const LoadedModule&) = default;

  private:
    std::shared_ptr<const Contents> m_contents;
};

/// Reads the bundle's Info.json, and only when that can be understood loads its library, once; the same
/// folder gives the same module again. Its classes are then in the `ClassRegistry`. An error is one sentence
/// with the file and the reason. The code of a module that was refused after it was loaded stays in the
/// process, unused. Any thread, one at a time.
Result<LoadedModule> loadPlugIn(const std::string& bundleFolder);

}  // namespace vigil
