// What the machine is. No result of the library depends on it.
#pragma once

class ccCpuType {
public:
  static bool mmxPresent();  // 64-bit vector registers: always on x86-64
};

// 1 Linux, 2 Windows.
long cfOperatingSystemClass();
// Lets a check pretend to another class, such as 1024, a system without surface pools; 0 goes back to the true one.
void cfOperatingSystemClass(long pretended);
