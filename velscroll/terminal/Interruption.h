#pragma once

namespace ScrollingCapture::Program {

/// Lets Ctrl-C, a termination request and a closed terminal ask for the end of the work, which then
/// happens at the next point where nothing is left behind. A signal that the program was started
/// with as ignored (under nohup, in a script's background) stays ignored.
void ListenForInterruption();

/// From now on the first of these signals only asks for the end of what goes on, and the work has
/// to be finished. Ctrl-C after that asks for the end of the work; a further termination request or
/// closed terminal does not.
void LetFirstSignalFinish();

/// Whether such a first signal has come. Safe from any thread.
bool FinishRequested();

/// Whether the end of the work has been asked for. Safe from any thread.
bool InterruptionRequested();

/// Throws Cancelled when the end of the work has been asked for.
void StopIfInterrupted();

}  // namespace ScrollingCapture::Program
