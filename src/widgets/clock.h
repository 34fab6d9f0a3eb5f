#pragma once

#include <QDate>

namespace vantrel {

// Today's date, injectable so that tests run on a fixed day.
class Clock {
public:
    virtual ~Clock() = default;
    virtual QDate today() const = 0;
};

class SystemClock final : public Clock {
public:
    QDate today() const override { return QDate::currentDate(); }
};

} // namespace vantrel
