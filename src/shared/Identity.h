// SPDX-License-Identifier: MIT
#pragma once

/// Tells the toolkit whose program this is and what it is called; from that follows where the
/// settings lie. Works before there is an application object.
void setApplicationIdentity();
