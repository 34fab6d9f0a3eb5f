#include "sqlfunctions.h"

#include "shortdate.h"

#include <cstring>
#include <sqlite3.h>

namespace vantrel {

namespace {

struct Ymd {
    int year = 0, month = 0, day = 0;
};

// Day, month and year positions of the short date form, kept with the functions.
struct DateForm {
    ShortDate::Part order[3];
};

const char *const MismatchMessage = "Data type mismatch in criteria expression.";

bool isLeap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

int daysInMonth(int y, int m)
{
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && isLeap(y) ? 29 : days[m - 1];
}

bool valid(const Ymd &d)
{
    return d.year >= 100 && d.year <= 9999 && d.month >= 1 && d.month <= 12 && d.day >= 1
        && d.day <= daysInMonth(d.year, d.month);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Splits "n1 sep n2 sep n3" (blanks around it allowed) into three numbers and their digit counts.
bool threeNumbers(const char *s, int length, int value[3], int digits[3], char separators[2])
{
    int i = 0;
    while (i < length && s[i] == ' ')
        ++i;
    for (int k = 0; k < 3; ++k) {
        value[k] = 0;
        digits[k] = 0;
        while (i < length && isDigit(s[i]) && digits[k] < 5) {
            value[k] = value[k] * 10 + (s[i] - '0');
            ++digits[k];
            ++i;
        }
        if (digits[k] == 0)
            return false;
        if (k < 2) {
            if (i >= length || isDigit(s[i]) || s[i] == ' ')
                return false;
            separators[k] = s[i++];
        }
    }
    while (i < length && s[i] == ' ')
        ++i;
    return i == length;
}

int widenTwoDigitYear(int year, int digits)
{
    if (digits <= 2)
        return year < 30 ? 2000 + year : 1900 + year;
    return digits == 4 ? year : -1;
}

bool parseDateText(const char *s, int length, const DateForm &form, Ymd &out)
{
    int value[3], digits[3];
    char separators[2];
    if (!threeNumbers(s, length, value, digits, separators))
        return false;
    if (digits[0] == 4 && separators[0] == '-' && separators[1] == '-') {
        out = {value[0], value[1], value[2]};
        return valid(out);
    }
    for (int k = 0; k < 3; ++k) {
        switch (form.order[k]) {
        case ShortDate::Day: out.day = value[k]; break;
        case ShortDate::Month: out.month = value[k]; break;
        case ShortDate::Year: out.year = widenTwoDigitYear(value[k], digits[k]); break;
        }
    }
    return valid(out);
}

// Days from 30 December 1899, the date serial of the original engine.
bool fromSerial(double serial, Ymd &out)
{
    if (!(serial > -657435.0 && serial < 2958466.0))
        return false;
    // Civil-from-days (Howard Hinnant), counted from 1970-01-01.
    long long z = static_cast<long long>(serial) - 25569 + 719468;
    const long long era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    out.day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    out.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    out.year = static_cast<int>(yoe + era * 400 + (out.month <= 2 ? 1 : 0));
    return valid(out);
}

enum class DateArg { Null, Date, NotADate };

DateArg dateArgument(sqlite3_value *value, const DateForm &form, Ymd &out)
{
    switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
        return DateArg::Null;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
        return fromSerial(sqlite3_value_double(value), out) ? DateArg::Date : DateArg::NotADate;
    default: {
        const char *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
        const int length = sqlite3_value_bytes(value);
        return text && parseDateText(text, length, form, out) ? DateArg::Date : DateArg::NotADate;
    }
    }
}

char *putNumber(char *out, int value, int width)
{
    char digits[8];
    int n = 0;
    do {
        digits[n++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value > 0 && n < 8);
    while (n < width)
        digits[n++] = '0';
    while (n > 0)
        *out++ = digits[--n];
    return out;
}

void cdateFunction(sqlite3_context *context, int, sqlite3_value **argv)
{
    const auto &form = *static_cast<const DateForm *>(sqlite3_user_data(context));
    Ymd date;
    switch (dateArgument(argv[0], form, date)) {
    case DateArg::Null:
        sqlite3_result_null(context);
        return;
    case DateArg::NotADate:
        sqlite3_result_error(context, MismatchMessage, -1);
        return;
    case DateArg::Date:
        break;
    }
    char iso[11];
    char *end = putNumber(iso, date.year, 4);
    *end++ = '-';
    end = putNumber(end, date.month, 2);
    *end++ = '-';
    end = putNumber(end, date.day, 2);
    sqlite3_result_text(context, iso, static_cast<int>(end - iso), SQLITE_TRANSIENT);
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

void formatFunction(sqlite3_context *context, int, sqlite3_value **argv)
{
    static const char *const months[] = {"January", "February", "March", "April", "May", "June", "July",
                                         "August", "September", "October", "November", "December"};
    const auto &form = *static_cast<const DateForm *>(sqlite3_user_data(context));
    Ymd date;
    const DateArg kind = dateArgument(argv[0], form, date);
    if (kind == DateArg::Null) {
        sqlite3_result_null(context);
        return;
    }
    if (kind == DateArg::NotADate) {
        sqlite3_result_value(context, argv[0]);
        return;
    }
    const char *pattern = reinterpret_cast<const char *>(sqlite3_value_text(argv[1]));
    const int length = pattern ? sqlite3_value_bytes(argv[1]) : 0;
    char buffer[512];
    char *out = buffer;
    char *const limit = buffer + sizeof buffer - 16;
    for (int i = 0; i < length && out < limit;) {
        const char c = lower(pattern[i]);
        int run = 1;
        while (i + run < length && lower(pattern[i + run]) == c)
            ++run;
        if (c == 'y') {
            out = run >= 3 ? putNumber(out, date.year, 4) : putNumber(out, date.year % 100, 2);
        } else if (c == 'm' && run >= 3) {
            const char *name = months[date.month - 1];
            const size_t n = run == 3 ? 3 : std::strlen(name);
            std::memcpy(out, name, n);
            out += n;
        } else if (c == 'm' || c == 'd') {
            out = putNumber(out, c == 'm' ? date.month : date.day, run >= 2 ? 2 : 1);
        } else {
            for (int k = 0; k < run && out < limit; ++k)
                *out++ = pattern[i + k];
        }
        i += run;
    }
    sqlite3_result_text(context, buffer, static_cast<int>(out - buffer), SQLITE_TRANSIENT);
}

} // namespace

QDate dateOfText(const QString &text, const ShortDate &shortDate)
{
    const DateForm form{{shortDate.order()[0], shortDate.order()[1], shortDate.order()[2]}};
    const QByteArray bytes = text.toUtf8();
    Ymd day;
    return parseDateText(bytes.constData(), int(bytes.size()), form, day) ? QDate(day.year, day.month, day.day) : QDate();
}

void registerSqlFunctions(sqlite3 *handle, const ShortDate &shortDate)
{
    auto *form = new DateForm{{shortDate.order()[0], shortDate.order()[1], shortDate.order()[2]}};
    const auto release = [](void *p) { delete static_cast<DateForm *>(p); };
    const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    // The connection owns one DateForm; it is released with the last function that uses it.
    auto *shared = new DateForm(*form);
    sqlite3_create_function_v2(handle, "cdate", 1, flags, form, cdateFunction, nullptr, nullptr, release);
    sqlite3_create_function_v2(handle, "format", 2, flags, shared, formatFunction, nullptr, nullptr, release);
}

} // namespace vantrel
