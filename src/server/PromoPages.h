#pragma once
// The small Chinese promotion pages that urltype 1 banner items open. Stateless; any thread.

#include <QByteArray>

#include <optional>

namespace PromoPages {

// UTF-8 HTML of page `number` (1-based), absent for a page that does not exist.
std::optional<QByteArray> page(int number);

} // namespace PromoPages
