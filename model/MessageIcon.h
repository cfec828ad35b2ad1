#pragma once

namespace sx {

// The icon of a message box; rules that decide what a box says decide it too.
enum class MessageIcon { None, Information, Exclamation, Critical, Question };

} // namespace sx
