// A recorded list of drawing commands. Copies share the commands. A tablet made by its default constructor records
// what is drawn on it into its sketch; ccUITablet::draw replays.
#pragma once

#include <memory>
#include <vector>

class cc_SketchOp;

class ccUISketch {
public:
  ccUISketch();
  ~ccUISketch();
  ccUISketch(ccUISketch const&);
  ccUISketch& operator=(ccUISketch const&);

  void erase();
  bool isEmpty() const { return ops_.empty(); }
  ccUISketch& operator+=(ccUISketch const&);  // of itself, too

  // For tablets.
  std::vector<std::shared_ptr<cc_SketchOp const>> const& ops_seq() const { return ops_; }
  void append(std::shared_ptr<cc_SketchOp const>);

private:
  std::vector<std::shared_ptr<cc_SketchOp const>> ops_;
};
