#ifndef MIRA_CONSOLE_INTERRUPT_H_
#define MIRA_CONSOLE_INTERRUPT_H_

namespace mira::console {

// From now on Ctrl+C, or a request to terminate, ends the command between two writes; a second one
// ends the program.
void FinishOnInterrupt();
// Whether that was asked for since.
bool IsInterrupted();

}  // namespace mira::console

#endif  // MIRA_CONSOLE_INTERRUPT_H_
