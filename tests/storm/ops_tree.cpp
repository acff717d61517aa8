// Operations on frames and shapes, what hooks are told to do, and failing memory.
#include "tests/storm/noisy.h"

namespace {

using enum StormGroup;
using enum StormPlace;
using Op = StormOp const&;

ccUIRect rectOf(Op o) { return ccUIRect(o.c % 40 - 4L, o.d % 30 - 4L, o.e % 8 == 0 ? 1 : 3 + o.c / 8 % 30, 3 + o.d / 8 % 25); }

// One control frame in three floats, and a third are frames of shapes.
void makeFrame(StormStage& s, Op o)
{
  ccUIFrame* const home = s.home(o.a);
  auto* const control = dynamic_cast<ccUIControlFrame*>(home);
  if (!control || !s.roomForNodes())
    return;
  ccUIFrame* frame;
  if (o.b % 3 == 0)
    frame = new StormShapesFrame(s, o.b & 64, control, rectOf(o));
  else
    frame = new StormFrame(s, o.b & 64, control, rectOf(o), o.e);
  frame->opaque(ccUITablet::imageLayer, o.b % 5 < 3);
  frame->opaque(ccUITablet::overlayLayer, o.b % 7 < 2);
  frame->clickable(o.b & 1);
  frame->draggable(o.b & 2);
  frame->autoDelete(!(o.b & 32));
  frame->resizable(s.on(sizer) && (o.b & 4));
  frame->condVisible(true);
}

void frameState(StormStage& s, Op o)
{
  ccUIObject* const n = s.node(o.a);
  if (!n)
    return;
  switch (o.b % 8) {
  case 0:
    n->condVisible(false);
    break;
  case 1:
    n->condEnabled(o.c % 3 != 0);
    break;
  case 2:
    n->condSelected(o.c % 2 != 0, o.d % 2 != 0);
    break;
  case 3:
    n->front();
    break;
  case 4:
    n->back();
    break;
  case 5:
    n->userSelect(o.c % 3);
    break;
  default:
    n->condVisible(true);
  }
}

void frameGeometry(StormStage& s, Op o)
{
  ccUIFrame* const f = s.frame(o.a);
  if (!f)
    return;
  switch (o.b % 6) {
  case 0:
    f->moveRel(ccPair<long>(o.c % 15 - 7L, o.d % 15 - 7L));
    break;
  case 1:
    f->size(ccPair<long>(o.c % 40 + 1, o.d % 30 + 1));
    break;
  case 2:
    f->scopeRect(rectOf(o));
    break;
  case 3:
    f->opaque(o.c % 2 ? ccUITablet::imageLayer : ccUITablet::overlayLayer, o.d % 2 != 0);
    f->redraw(ccUITablet::bothLayers);
    break;
  case 4:
    if (auto* const c = dynamic_cast<ccUIControlFrame*>(f))
      c->attachedTo(static_cast<ccUIControlFrame::AttachedTo>(o.c % 9));
    break;
  default:
    f->redraw(static_cast<ccUITablet::Layers>(o.c % 3));
  }
}

void reparentFrame(StormStage& s, Op o)
{
  ccUIFrame* const f = s.frame(o.a);
  ccUIFrame* const home = s.home(o.b);
  for (ccUIObject const* up = home; up; up = up->parent())
    if (up == f)
      return;
  if (!f || !home)
    return;
  bool const shownBefore = f->parent() && f->parent()->visible();
  if (s.on(hiddenParents) || (shownBefore && home->visible()))
    f->setParent(*home, rectOf(o));
}

// A display counts as a node where its own hook deletes it.
void deleteNode(StormStage& s, Op o)
{
  ccUIObject* const n = s.node(o.a);
  if (dynamic_cast<NoisyDisplay*>(n) && !s.on(s.painting() ? paintDeaths : deaths))
    return;
  if (s.painting() && !s.on(paintDeletes))
    return;
  delete n;
}

ccUIShapesFrame* shapesHome(StormStage& s, Op o)
{
  if (o.b % 4 == 3)
    if (auto* const f = dynamic_cast<StormShapesFrame*>(s.frame(o.c)))
      return f;
  NoisyDisplay* const d = s.display(o.e);
  return d ? d->shapesFrame(static_cast<ccDisplay::CoordinateSystem>(o.b % 4 % 3)) : nullptr;
}

void makeShape(StormStage& s, Op o)
{
  ccUIShapesFrame* const home = shapesHome(s, o);
  if (!home || !s.roomForNodes())
    return;
  auto* const shape = new StormShape(s, o.a & 64, o.a, o.c % 35, o.d % 25);
  shape->drawLayer(o.a & 1 ? ccUITablet::imageLayer : ccUITablet::overlayLayer);
  shape->clickable(o.d & 1);
  shape->draggable(o.d & 2);
  shape->multiSelectable(o.d & 4);
  NoisyDisplay* const d = s.display(o.e);
  if (dynamic_cast<StormShapesFrame*>(home)) {
    home->incrementCount(shape->drawLayer());
    shape->parent(home);
    shape->condVisible(true);
  } else {
    std::uint32_t const key = shape->key();
    d->addShape(shape, static_cast<ccDisplay::CoordinateSystem>(o.b % 4 % 3));
    if (shape == s.node(255) || ccUIObject::isValid(shape, key, shape->root()))
      shape->condVisible(true);
  }
}

void changeShape(StormStage& s, Op o)
{
  StormShape* const shape = s.shape(o.a);
  if (!shape)
    return;
  switch (o.b % 6) {
  case 0:
    shape->pos(ccVector<2>(o.c % 35, o.d % 25));
    break;
  case 1:
    shape->move(ccVector<2>(o.c % 9 - 4, o.d % 9 - 4));
    break;
  case 2:
    shape->color(ccColor::redColor());
    break;
  case 3:
    shape->props(ccGraphicProps(ccColor::blueColor(), o.c % 5, ceSolidPen, false));
    break;
  default:
    shape->update(true, o.c % 2 != 0, nullptr, ccUITablet::bothLayers);
  }
}

void removeShape(StormStage& s, Op o)
{
  StormShape* const shape = s.shape(o.a);
  NoisyDisplay* const d = s.display(o.e);
  if (shape && d)
    d->removeShape(shape);
}

// By parent alone: from frame to frame, and below other shapes.
void joinShape(StormStage& s, Op o)
{
  StormShape* const shape = s.shape(o.a);
  ccUIObject* home = o.d % 5 == 0 ? nullptr : o.d % 5 == 1 ? static_cast<ccUIObject*>(s.shape(o.c)) : shapesHome(s, o);
  for (ccUIObject const* up = home; up; up = up->parent())
    if (up == shape)
      return;
  if (!shape)
    return;
  shape->parent(home);
}

HookKind kindOf(unsigned n, bool paints)
{
  return paints ? HookKind::paint : static_cast<HookKind>(n % (static_cast<unsigned>(HookKind::count) - 1));
}

// What the hook does: b an operation's byte, the rest its values; 255 among these is the hook's own node.
StormOp actOf(Op o) { return {o.b, static_cast<std::uint8_t>(o.c % 3 == 0 ? 255 : o.c), o.d, o.e, o.c, o.d}; }

StormOp deletionOf(Op o)
{
  static std::uint8_t const row = [] {
    auto const& rows = cfStormRows();
    std::uint8_t i = 0;
    while (rows[i].run != deleteNode)
      ++i;
    return i;
  }();
  return {row, static_cast<std::uint8_t>(o.b % 2 ? 255 : o.c), 0, 0, 0, 0};
}

void plan(StormStage& s, Op o, bool paints) { s.planHook(kindOf(o.a, paints), 1 + o.a / 8 % 4u, cfRow(o).does(o)); }

}  // namespace

void cfAddTreeOps(std::vector<StormRow>& rows)
{
  rows.insert(rows.end(), {
      {"makeFrame", frames, anywhere, 8, makeFrame},
      {"nodeState", frames, anywhere, 14, frameState},
      {"frameGeometry", frames, anywhere, 10, frameGeometry},
      {"reparent", frames, anywhere, 4, reparentFrame},
      {"deleteNode", frames, anywhere, 3, deleteNode},
      {"makeShape", shapes, notWhilePainting, 8, makeShape},
      {"changeShape", shapes, notWhilePainting, 8, changeShape},
      {"removeShape", shapes, notWhilePainting, 2, removeShape},
      {"joinShape", joins, notWhilePainting, 4, joinShape},
  });
}

void cfAddHookOps(std::vector<StormRow>& rows)
{
  rows.insert(rows.end(), {
      {"hookDoes", hooks, outermost, 10, [](StormStage& s, Op o) { plan(s, o, false); }, actOf},
      {"hookDeletes", hooks, outermost, 4, [](StormStage& s, Op o) { plan(s, o, false); }, deletionOf},
      {"paintDoes", paintHooks, outermost, 4, [](StormStage& s, Op o) { plan(s, o, true); }, actOf},
      {"paintDeletes", paintHooks, outermost, 3, [](StormStage& s, Op o) { plan(s, o, true); }, deletionOf},
      {"hookThrows", throws, outermost, 4,
       [](StormStage& s, Op o) { s.planThrow(kindOf(o.a, false), 1 + o.a / 8 % 4u, o.b); }},
      {"paintThrows", paintThrows, outermost, 3,
       [](StormStage& s, Op o) { s.planThrow(HookKind::paint, 1 + o.a / 8 % 4u, o.b); }},
      {"memoryFails", memory, outermost, 8, [](StormStage& s, Op o) { s.planMemory(1u + o.a % (o.b % 2 ? 200u : 20u)); }},
      {"lookRarely", hooks, outermost, 0, [](StormStage& s, Op o) { s.rare(1u + o.a % 16u); }},
  });
}
