#pragma once

#include <span>
#include <string_view>

namespace escola {

/// Words that people, places and texts are put together from; all UTF-8.
std::span<std::string_view const> femaleNames();
std::span<std::string_view const> maleNames();
std::span<std::string_view const> surnames();
std::span<std::string_view const> streets();
std::span<std::string_view const> districts();
std::span<std::string_view const> professions();
std::span<std::string_view const> studentRemarks();

}  // namespace escola
