// The link to a vision processor, as far as pel buffers know of it. Pel roots of this library always lie in local memory.
#pragma once

class ccRemoteObject {
public:
  virtual ~ccRemoteObject() = default;
  virtual unsigned long handle() const { return 0; }  // 0 for local objects
};

class ccCommunicator;
