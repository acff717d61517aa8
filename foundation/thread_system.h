// What threads need of the operating system, realised in one folder per system.
#pragma once

long cf_systemClass();            // see cfOperatingSystemClass
unsigned long cf_systemThread();  // the system's own number of the calling thread
// Applies a priority from 0, idle, to 6, time critical. A refusal is silent.
void cf_applyPriority(unsigned long systemThread, int priority);
