// The memory behind pel buffers. A root owns its pels, or refers to foreign memory which must outlive it or be
// disconnected first; every view of a disconnected root is unbound.
#pragma once

#include "foundation/handle.h"
#include "foundation/pels.h"
#include "foundation/remote.h"

#include <cstdint>
#include <memory>
#include <typeinfo>

class ccPelRootPool;

class cc_PelRoot : public virtual ccRepBase, public ccRemoteObject {
public:
  cc_PelRoot(cc_PelRoot const&) = delete;
  cc_PelRoot& operator=(cc_PelRoot const&) = delete;
  ~cc_PelRoot() override;

  long width() const { return width_; }
  long height() const { return height_; }
  long rowStride() const { return rowStride_; }  // in pels
  long pelBytes() const { return pelBytes_; }
  ccCommunicator* communicator() const { return nullptr; }  // always local
  ccPelRootPool* pool() const { return pool_.get(); }
  std::uint32_t changeCount() const { return changes_; }
  void mutating() { ++changes_; }  // call before writing pels
  bool isConnected() const { return memory_ != nullptr; }
  void disconnect() { memory_ = nullptr; }  // forgets foreign memory

protected:
  // Sides of at least 1 and less than 2^31 bytes, else ccPelError::BadSize. Alignment 0: foreign memory, whose stride may be
  // negative and is at least the width (null memory makes a disconnected root). Else own zeroed memory, whose rows are
  // aligned to so many bytes.
  cc_PelRoot(void* memory, long width, long height, long rowStride, long pelBytes, long alignment);
  void* memory() const { return memory_; }
  void pool(ccPtrHandle<ccPelRootPool> const& p) { pool_ = p; }

private:
  void* memory_;
  long width_, height_, rowStride_, pelBytes_;
  std::uint32_t changes_ = 0;
  std::unique_ptr<unsigned char[]> own_;
  ccPtrHandle<ccPelRootPool> pool_;
};

template <class T> class ccPelRoot : public cc_PelRoot {
public:
  ccPelRoot(long width, long height, long alignment = 8) : cc_PelRoot(nullptr, width, height, 0, sizeof(T), alignment < 1 ? 1 : alignment) {}
  ccPelRoot(T* memory, long width, long height, long rowStride)
      : cc_PelRoot(memory, width, height, rowStride, sizeof(T), 0)
  {
  }
  T* row(long y) const { return static_cast<T*>(memory()) + y * rowStride(); }  // unchecked
};

class cc_SlottedPelRootBase {
public:
  explicit cc_SlottedPelRootBase(long slot) : slot_(slot) {}
  virtual ~cc_SlottedPelRootBase() = default;
  long slot() const { return slot_; }

private:
  long slot_;
};

// A source of roots, such as a pool of surfaces that a camera writes into.
class ccPelRootPool : public ccRepBase {
public:
  virtual bool size(unsigned long long bytes);  // can it serve so much; by default yes
  virtual void release(cc_PelRoot*);            // a root of this pool died
  virtual bool videoPelRoots() const;           // the roots lie in memory that must be copied before it is kept
  virtual cc_PelRoot* newPelRoot(long width, long height, std::type_info const&) = 0;  // null: none left
  virtual void deletePelRoot(cc_SlottedPelRootBase*) = 0;
  void notifyRelease(cc_PelRoot* root) { release(root); }
};

// A root that remembers its place in a pool. Its last handle gives it back to the pool.
template <class T> class cc_SlottedPelRoot : public ccPelRoot<T>, public cc_SlottedPelRootBase {
public:
  cc_SlottedPelRoot(ccPtrHandle<ccPelRootPool> const& owner, long slot, T* memory, long width, long height,
                    long rowStride)
      : ccPelRoot<T>(memory, width, height, rowStride), cc_SlottedPelRootBase(slot)
  {
    this->pool(owner);
  }
  // Here and not in the base's destructor, where the slot could no longer be asked for.
  ~cc_SlottedPelRoot() override
  {
    if (this->pool())
      this->pool()->notifyRelease(this);
  }

protected:
  void destroy_() override
  {
    ccPtrHandle<ccPelRootPool> const keep(this->pool());
    if (keep)
      keep->deletePelRoot(this);
    else
      delete this;
  }
};
