// A shape that an operator edits: abstract. Its handles follow its selection, unless it is not manipulable.
//
// A class whose own fields are not trivial begins its destructor with beginDestruction(), so that no other thread draws what is
// half gone.
#pragma once

#include "ui/core/shapes.h"

class ccUIManShape : public ccUIShapes {
public:
  explicit ccUIManShape(ccUIObject* parent = nullptr);
  ~ccUIManShape() override;

  virtual void updateHandles() = 0;       // the handles that there are take their places
  virtual void showHandles(bool on) = 0;  // makes them if need be
  virtual void freeHandles() = 0;         // deletes them; they come back with the next showHandles(true)

  bool manipulable() const { return manipulable_; }
  void manipulable(bool);
  bool wantsHandles() const { return manipulable_ && selected(); }

protected:
  void select(States, bool nested) override;
  void deselect(States, bool nested) override;
  void geometryChanged();  // what every setter of geometry ends with

private:
  bool anyHandleShown_() const;

  bool manipulable_ = true;
};
