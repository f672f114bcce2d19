#pragma once
// What a program that shows web pages does before it constructs its QApplication. Main thread,
// before any other Qt object exists.

namespace WebEngineSetup {

// Shares OpenGL contexts, as QtWebEngineWidgets requires, and when running as root turns off
// Chromium's sandbox (QTWEBENGINE_DISABLE_SANDBOX=1) unless the environment already decides.
// Headless runs (QT_QPA_PLATFORM=offscreen) need nothing more: Qt then runs Chromium without
// the GPU by itself.
void prepareProcess();

} // namespace WebEngineSetup
