#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host_contract/QRVAgentPlugIn.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"

namespace vigil {

class CycleReporting;
class Image;
class InterfaceOwner;
class SiteWindowController;
class ToolbarItem;

/// Base of every class that plugs into a host. Main thread.
///
/// Life: created by one of the two initialisers, loaded, started, stopped (as often as the host likes),
/// archived at any time, unloaded. An initialiser is called on a fresh object and answers whether a plug-in
/// comes of it; `makePlugIn` gives the object or nothing.
class VIGIL_KIT QRVPlugIn : public Object, public std::enable_shared_from_this<QRVPlugIn> {
  public:
    ~QRVPlugIn() override;

    /// (Keyword form: initWithAgent:siteWindowController:)
    virtual bool initWithAgent(std::shared_ptr<QRVAgentPlugIn> agent,
                               std::shared_ptr<SiteWindowController> siteWindowController);
    /// Restores the base's own entries ("agent", "title"). A subclass calls it before it reads its own.
    bool initWithCoder(KeyedDecoder& coder) override;
    void encodeWithCoder(KeyedEncoder& coder) const override;

    const std::shared_ptr<QRVAgentPlugIn>& agent() const { return m_agent; }
    std::shared_ptr<SiteWindowController> siteWindowController() const {
        return m_siteWindowController.lock();
    }
    void setSiteWindowController(const std::shared_ptr<SiteWindowController>& controller);

    /// Nothing means success; anything else stood in the way and is passed on to the caller.
    virtual std::shared_ptr<Object> start();
    virtual std::shared_ptr<Object> stop();
    virtual void didLoad();
    virtual void willUnload();
    virtual void viewWillAppear();
    virtual void viewWillDisappear();

    /// The instance's title in its site.
    const std::string& title() const { return m_title; }
    void setTitle(std::string title) { m_title = std::move(title); }

    /// From the bundle that holds the class; empty and 0 where there is none.
    std::string bundleIdentifier() const;
    long bundleVersion() const;

    // Identity and description, as the host lists and shows them. A base answer is empty or absent.
    virtual std::string name() const;
    virtual std::string textDescription() const;
    virtual std::string htmlDescription() const;
    virtual std::optional<std::string> xmlDescription() const;
    virtual std::optional<std::string> jsonDescription() const;
    virtual std::shared_ptr<Image> icon() const;
    virtual std::optional<std::string> group() const;
    virtual bool isUndockable() const;
    virtual bool isRenamable() const;
    virtual bool isDeletable() const;
    virtual std::shared_ptr<ToolbarItem> toolbarItem();

    /// What the class offers by name, or nothing.
    virtual InterfaceOwner* interfaceOwner();
    /// Its cycles, where it has any.
    virtual CycleReporting* cycleReporting();

  private:
    std::shared_ptr<QRVAgentPlugIn> m_agent;
    std::weak_ptr<SiteWindowController>
        m_siteWindowController;  // the site owns its plug-ins, not they the site
    std::string m_title;
};

/// The window of a site, or what stands for it in a service.
class VIGIL_KIT SiteWindowController {
  public:
    virtual ~SiteWindowController();
    /// Adds a plug-in to the site, under a title of its own when `nameUniquely`, and selects it when
    /// `select`. (Keyword form: addPlugIn:nameUniquely:select:)
    virtual void addPlugIn(std::shared_ptr<QRVPlugIn> plugIn, bool nameUniquely, bool select) = 0;
};

/// A new plug-in of class T for an agent, or nothing when its initialiser says that none comes to be.
template <class T>
std::shared_ptr<T> makePlugIn(std::shared_ptr<QRVAgentPlugIn> agent,
                              std::shared_ptr<SiteWindowController> controller) {
    auto plugIn = std::make_shared<T>();
    return plugIn->initWithAgent(std::move(agent), std::move(controller)) ? plugIn : nullptr;
}

}  // namespace vigil
