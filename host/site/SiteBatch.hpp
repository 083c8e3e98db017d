#pragma once

#include <string>
#include <variant>

#include "host/site/SiteDatabase.hpp"
#include "host/site/SiteRecords.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Inserts an effect or replaces the one with its id; parameters as `bindEffect` binds them.
extern const char* const kPutEffect;

/// A share that takes a few milliseconds.
inline constexpr int kForgottenAtOnce = 1000;

/// The writer's connection: writes of many callers in one transaction. One thread. What fails for all of
/// them is thrown as SQLite::Exception, and then this object is of no further use: everything that was not
/// committed is as before.
class SiteBatch {
  public:
    explicit SiteBatch(const std::string& path);
    SiteBatch(const SiteBatch&) = delete;
    SiteBatch& operator=(const SiteBatch&) = delete;

    void begin();
    // An error is about this write alone: it leaves no trace, the others go on.
    Result<Done> put(const FireRecord& fire);
    Result<Done> put(const EffectRecord& effect);
    Result<Done> save(const PlugInRecord& plugIn);
    Result<Done> complete(RecordId fire, const PlugInRecord& plugIn);
    /// At most `kForgottenAtOnce` completed fires and as many ended effects from before that date go.
    Result<Done> forget(Date before);
    /// On the disk when it returns.
    void commit();

  private:
    Result<Done> ran(SQLite::Statement& statement, const char* missing);

    std::string m_path;
    SiteDatabase m_database;
    // Made once, since parsing costs more than writing.
    SQLite::Statement m_begin, m_mark, m_commit, m_putFire, m_putEffect, m_save, m_complete;
};

}  // namespace vigil
