#include "model/RowCursor.h"

#include <charconv>
#include <cmath>

namespace sx {

Rows::Rows(DbError failure) : m_error(std::move(failure)) {}
Rows::Rows(std::unique_ptr<CursorBackend> backend)
    : m_backend(std::move(backend)), m_columns(m_backend ? m_backend->columnCount() : 0)
{
}
Rows::Rows(Rows&&) noexcept = default;
Rows& Rows::operator=(Rows&&) noexcept = default;
Rows::~Rows() = default;

bool Rows::next()
{
    m_onRow = false;
    if (!m_backend || m_error.isError() || (m_limit >= 0 && m_row >= m_limit))
        return false;
    if (!m_backend->next()) {
        m_error = m_backend->error();
        return false;
    }
    ++m_row;
    m_onRow = true;
    return true;
}

int Rows::columnCount() const
{
    return m_columns;
}

int Rows::column(QStringView name) const
{
    if (!m_backend)
        return -1;
    for (int c = 0; c < m_columns; ++c) {
        if (QStringView(m_backend->columnName(c)).compare(name, Qt::CaseInsensitive) == 0)
            return c;
    }
    return -1;
}

bool Rows::valid(int c) const
{
    return m_onRow && c >= 0 && c < m_columns;
}

bool Rows::isNull(int c) const
{
    return !valid(c) || m_backend->isNull(c);
}

std::optional<qint64> Rows::integer(int c) const
{
    return valid(c) ? m_backend->integer(c) : std::nullopt;
}

std::optional<double> Rows::real(int c) const
{
    return valid(c) ? m_backend->real(c) : std::nullopt;
}

std::optional<QString> Rows::text(int c) const
{
    return valid(c) ? m_backend->text(c) : std::nullopt;
}

std::optional<qint64> Rows::dateTime(int c) const
{
    return valid(c) ? m_backend->dateTime(c) : std::nullopt;
}

namespace {
std::string_view trimmed(std::string_view t)
{
    while (!t.empty() && (t.front() == ' ' || t.front() == '\t'))
        t.remove_prefix(1);
    while (!t.empty() && (t.back() == ' ' || t.back() == '\t'))
        t.remove_suffix(1);
    return t;
}
} // namespace

std::optional<double> parseRealText(std::string_view text)
{
    text = trimmed(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    double v = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (ec != std::errc() || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    return v;
}

std::optional<qint64> parseIntegerText(std::string_view text)
{
    text = trimmed(text);
    if (text == "t" || text == "true")
        return 1;
    if (text == "f" || text == "false")
        return 0;
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    qint64 v = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (ec == std::errc() && end == text.data() + text.size() && !text.empty())
        return v;
    // A real stored where a whole number is expected is rounded to the
    // nearest whole number.
    const auto r = parseRealText(text);
    if (r && std::isfinite(*r) && std::fabs(*r) < 9.2e18)
        return static_cast<qint64>(std::llround(*r));
    return std::nullopt;
}

} // namespace sx
