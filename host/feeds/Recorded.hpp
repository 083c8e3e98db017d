#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// What one station sent at one time.
struct RecordedNotification {
    std::string station;  ///< empty where the data names none
    Date time;
    std::shared_ptr<const Readings> readings;  ///< never absent; batches of a station share their key table
    std::size_t line = 0;  ///< where it begins in the file, from 1; its number from 1 where there is no file
};

/// Something in the data that was left out, and where.
struct FeedProblem {
    std::size_t line = 0;  ///< from 1
    std::string message;   ///< without the line
};

/// Told of every problem, in the order of the data, on the thread that asks for the next notification. May be
/// empty.
using ProblemTeller = std::function<void(const FeedProblem&)>;

/// Why a source cannot be opened.
struct OpenError {
    enum class Kind {
        CannotRead,  ///< the environment: no such file, no permission
        BadInput     ///< the data or the options: no header, no such column
    };
    Kind kind = Kind::CannotRead;
    std::string message;  ///< with the file and the line
};

/// Gives notifications one after another. One thread at a time.
class RecordedSource {
  public:
    RecordedSource() = default;
    RecordedSource(const RecordedSource&) = delete;
    RecordedSource& operator=(const RecordedSource&) = delete;
    virtual ~RecordedSource();

    /// The next notification, or nothing at the end (and from then on). Times of one station never go back;
    /// those of different stations may. An error only where the environment fails (a disk, a pipe): the
    /// source is then at its end. What the data does wrong is told as a problem and left out.
    virtual Result<std::optional<RecordedNotification>> next() = 0;
};

/// A station has at most so many keys; further ones are left out and told once a station. Stops data that
/// makes up a new key in every row.
inline constexpr std::size_t kMostKeysOfStation = 512;
/// A source knows at most so many stations; rows of further ones are told and left out. Stops a station
/// column that is really a serial number.
inline constexpr std::size_t kMostStations = 1000;
/// A row or line has at most so many bytes; a longer one is told and left out. Stops a quote that is never
/// closed.
inline constexpr std::size_t kLongestRow = std::size_t{1} << 20;
/// A name of a reading has at most so many bytes; a reading with a longer one is told and left out.
inline constexpr std::size_t kLongestName = 256;
/// So many rows of a station are held back so that rows out of order find their place. A row that comes
/// later than that is told and left out.
inline constexpr std::size_t kOrderWindow = 10000;

}  // namespace vigil
