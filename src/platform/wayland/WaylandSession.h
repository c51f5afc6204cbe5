// SPDX-License-Identifier: MIT
#pragma once

/// What the environment says about a Wayland session.
namespace WaylandSession
{

/// Whether a compositor answers.
bool isThere();

/// Whether the toolkit's part for Wayland is installed; distributions package it apart.
bool toolkitKnowsIt();

/// Whether the application object shows its windows there.
bool isTheToolkitOnIt();

} // namespace WaylandSession
