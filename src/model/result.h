#pragma once

#include <QString>

#include <utility>
#include <variant>

namespace eventtimer {

// The reason something could not be done, in words a document author can act on.
struct Error
{
    QString text;
};

// A value, or the reason there is none. Errors travel as values between layers, never as
// exceptions.
template <typename T> class Result
{
public:
    Result(T value)
        : m_data(std::move(value))
    {}
    Result(Error error)
        : m_data(std::move(error))
    {}

    bool ok() const { return std::holds_alternative<T>(m_data); }
    explicit operator bool() const { return ok(); }

    const T &value() const & { return std::get<T>(m_data); }
    T &value() & { return std::get<T>(m_data); }
    T &&value() && { return std::get<T>(std::move(m_data)); }
    const QString &error() const { return std::get<Error>(m_data).text; }

private:
    std::variant<T, Error> m_data;
};

// Success without a value, or the reason of the failure.
template <> class Result<void>
{
public:
    Result() = default;
    Result(Error error)
        : m_error(std::move(error.text))
        , m_failed(true)
    {}

    bool ok() const { return !m_failed; }
    explicit operator bool() const { return ok(); }
    const QString &error() const { return m_error; }

private:
    QString m_error;
    bool m_failed = false;
};

using Status = Result<void>;

} // namespace eventtimer
