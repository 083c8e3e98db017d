#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "host_contract/QRVPlugIn.hpp"
#include "platform/NotificationCenter.hpp"
#include "plugins/ContractProbe/HostPromises.hpp"

namespace vigil {

/// Something that the probe archives twice.
class ProbeSample : public Object {
  public:
    std::string className() const override { return "ProbeSample"; }
};

/// Watches its host and notes which promises it keeps.
class ContractProbe : public QRVPlugIn {
  public:
    std::string className() const override { return "ContractProbe"; }
    /// The table so far.
    std::string textDescription() const override { return m_promises->table(); }

    bool initWithAgent(std::shared_ptr<QRVAgentPlugIn> agent,
                       std::shared_ptr<SiteWindowController> siteWindowController) override;
    bool initWithCoder(KeyedDecoder& coder) override;
    void encodeWithCoder(KeyedEncoder& coder) const override;

    void didLoad() override { m_loaded = true; }
    std::shared_ptr<Object> start() override;
    std::shared_ptr<Object> stop() override;
    void willUnload() override;

  private:
    void noteMade();
    void noteArchive(KeyedDecoder& coder);
    void heard(const Notification& notification);
    void noteBatch(const Notification& notification);
    void noteHandOver();

    std::shared_ptr<HostPromises> m_promises = std::make_shared<HostPromises>();
    bool m_loaded = false;
    std::atomic<bool> m_started = false;
    std::atomic<int> m_inside = 0;
    Date m_lastHeard = Date::distantPast();  // the station's thread, one notification at a time
};

}  // namespace vigil
