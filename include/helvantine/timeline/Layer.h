// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/timeline/Effect.h>

namespace helvantine
{

/// An effect that only holds others: the root of each composition, and a user's group.
class HELVANTINE_FX_API Layer : public Effect
{
    HELVANTINE_PLUGIN_CLASS(Layer)
};

} // namespace helvantine
