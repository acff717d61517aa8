// Reference counting: ccRepBase counts, ccPtrHandle<T> and ccPtrHandle_const<T> hold. Only objects made with new go under
// handles. The count is atomic; one handle object is not synchronised.
#pragma once

#include <atomic>
#include <cstddef>
#include <type_traits>

[[noreturn]] void cf_throwBadPointer();

class ccRepBase {
public:
  ccRepBase() = default;
  ccRepBase(ccRepBase const&) {}                              // a copy starts at count 0
  ccRepBase& operator=(ccRepBase const&) { return *this; }    // assignment leaves the count
  virtual ~ccRepBase() = default;
  long refCount() const { return count_.load(std::memory_order_acquire); }

  // For handles only.
  void addReference_() const { count_.fetch_add(1, std::memory_order_relaxed); }
  void dropReference_() const;

protected:
  virtual void destroy_();  // the count fell to 0; by default deletes the object

private:
  mutable std::atomic<long> count_{0};
};

// Views a T const. A use of a null handle throws ccBadPointer.
template <class T> class ccPtrHandle_const {
public:
  ccPtrHandle_const(T const* object = nullptr) : object_(object) { add_(); }
  ccPtrHandle_const(ccPtrHandle_const const& other) : object_(other.object_) { add_(); }
  ccPtrHandle_const(ccPtrHandle_const&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
  template <class U, class = std::enable_if_t<std::is_convertible_v<U const*, T const*>>>
  ccPtrHandle_const(ccPtrHandle_const<U> const& other) : object_(other.get()) { add_(); }
  ~ccPtrHandle_const() { drop_(); }
  ccPtrHandle_const& operator=(ccPtrHandle_const const& other)
  {
    T const* const former = object_;
    object_ = other.object_;
    add_();
    if (former)
      former->dropReference_();
    return *this;
  }
  ccPtrHandle_const& operator=(ccPtrHandle_const&& other) noexcept
  {
    if (this != &other) {
      T const* const former = object_;
      object_ = other.object_;
      other.object_ = nullptr;
      if (former)
        former->dropReference_();
    }
    return *this;
  }

  T const* get() const { return object_; }
  T const* operator->() const { return object_ ? object_ : (cf_throwBadPointer(), object_); }
  T const& operator*() const { return *operator->(); }
  explicit operator bool() const { return object_ != nullptr; }
  void clear() { *this = ccPtrHandle_const(); }

  // By the address of the complete object, so that handles to different bases of one object are equal.
  template <class U> friend bool operator==(ccPtrHandle_const const& a, ccPtrHandle_const<U> const& b)
  {
    return complete_(a.get()) == complete_(b.get());
  }
  friend bool operator==(ccPtrHandle_const const& a, std::nullptr_t) { return !a.object_; }

private:
  template <class U> static void const* complete_(U const* object)
  {
    return object ? dynamic_cast<void const*>(object) : nullptr;
  }
  void add_() const
  {
    if (object_)
      object_->addReference_();
  }
  void drop_() const
  {
    if (object_)
      object_->dropReference_();
  }

  T const* object_;
};

template <class T> class ccPtrHandle : public ccPtrHandle_const<T> {
public:
  ccPtrHandle(T* object = nullptr) : ccPtrHandle_const<T>(object) {}
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  ccPtrHandle(ccPtrHandle<U> const& other) : ccPtrHandle_const<T>(static_cast<T*>(other.get())) {}

  // The handle was made from a T*, so the const of the base's view may go.
  T* get() const { return const_cast<T*>(ccPtrHandle_const<T>::get()); }
  T* operator->() const { return const_cast<T*>(ccPtrHandle_const<T>::operator->()); }
  T& operator*() const { return *operator->(); }
  void clear() { *this = ccPtrHandle(); }
};
