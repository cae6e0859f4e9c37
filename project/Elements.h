#pragma once

#include <span>

#include "lib/strings/Containers.h"

/// The elements of a project's list; none when the list is missing or its size is below 0. Valid as long as they are.
template <class T>
std::span<T> elements(ARRAY<T>* list) {
  return list == nullptr ? std::span<T>() : std::span<T>(list->begin(), list->end());
}
