// Where a thread is, for reports of faults. Realised in one folder per system; makes no use of operator new.
#pragma once

int cf_stackTrace(void** frames, int most);                              // innermost first; how many
void cf_stackText(void* const* frames, int count, char* to, int room);  // a line for each, cut at the room
