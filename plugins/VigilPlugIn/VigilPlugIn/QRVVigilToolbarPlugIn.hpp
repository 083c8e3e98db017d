#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host_contract/QRVPlugIn.hpp"
#include "platform/InterfaceOwner.hpp"

namespace vigil {

/// Gives the site's window an item for its toolbar; each press makes a new monitor for the same station. Main
/// thread.
class QRVVigilToolbarPlugIn : public QRVPlugIn, public InterfaceOwner {
  public:
    ~QRVVigilToolbarPlugIn() override;
    std::string className() const override;

    bool initWithAgent(std::shared_ptr<QRVAgentPlugIn> agent,
                       std::shared_ptr<SiteWindowController> siteWindowController) override;
    /// Behind the base's entries: "lastUsedTitle".
    bool initWithCoder(KeyedDecoder& coder) override;
    void encodeWithCoder(KeyedEncoder& coder) const override;
    void didLoad() override;
    void willUnload() override;

    /// Archived and never asked for: new monitors always begin with the title "Vigil".
    const std::optional<std::string>& lastUsedTitle() const { return m_lastUsedTitle; }
    void setLastUsedTitle(std::optional<std::string> title) { m_lastUsedTitle = std::move(title); }

    /// A new item on every call; its action is `toolbarItemAction:` of this plug-in.
    std::shared_ptr<ToolbarItem> toolbarItem() override;
    /// Makes a monitor, whoever asks. (Keyword form: toolbarItemAction:)
    void toolbarItemAction(Object* sender);
    /// Adds a new monitor to the site, under a title of its own, and selects it. Nothing happens when none
    /// comes to be.
    void createNewVigil();

    std::string name() const override;
    std::string textDescription() const override;
    std::string htmlDescription() const override;
    std::shared_ptr<Image> icon() const override;

    InterfaceOwner* interfaceOwner() override { return this; }
    const InterfaceTable& interfaceTable() const override;

  private:
    void initCommon();

    std::optional<std::string> m_lastUsedTitle;
};

}  // namespace vigil
