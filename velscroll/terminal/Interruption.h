#pragma once

namespace ScrollingCapture::Program {

/// Lets Ctrl-C, a termination request and a closed terminal ask for the end of the work, which then
/// happens at the next point where nothing is left behind. A signal that the program was started
/// with as ignored (under nohup, in a script's background) stays ignored.
void ListenForInterruption();

/// Whether the end of the work has been asked for. Safe from any thread.
bool InterruptionRequested();

/// Throws Cancelled when the end of the work has been asked for.
void StopIfInterrupted();

}  // namespace ScrollingCapture::Program
