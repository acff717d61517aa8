// Random primitives of every kind at every depth: what is reported as changed holds what changed, and what is drawn in parts is
// what is drawn whole.
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "canvas/rle_buffer.h"
#include "geometry/ellipse_arc.h"
#include "geometry/gen_rect.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "tests/backend/scope/scope_fixture.h"

#include <cstdlib>
#include <functional>

namespace {

int rounds(int n)
{
  return std::getenv("KRS_LONG") ? 20 * n : n;
}

enum Kind { kPoint, kSegment, kChain, kPolygon, kPolyline, kRectangle, kEllipse, kArc, kEllipse2, kArc2, kText, kRuns, kSet,
            kFlood, kKinds };
char const* const names[] = {"point",   "segment", "chain", "polygon", "polyline", "rectangle", "ellipse",
                             "arc",     "ellipse2", "arc2", "text",    "runs",     "set",       "flood"};

struct Primitive {
  Kind kind = kPoint;
  std::string text;  // for messages
  std::function<void(ccUIScope&)> draw;
};

class Maker {
public:
  Maker(unsigned seed, long w, long h, std::vector<HFONT> const& fonts) : random_(seed), w_(w), h_(h), fonts_(fonts) {}

  long within(long low, long high) { return low + static_cast<long>(random_() % static_cast<unsigned>(high - low + 1)); }
  double real(double a, double b) { return std::uniform_real_distribution<double>(a, b)(random_); }
  ccUIRect rect()
  {
    long const x = within(0, w_ - 1), y = within(0, h_ - 1);
    return ccUIRect(x, y, within(1, w_ - x), within(1, h_ - y));
  }

  Primitive make(Kind kind)
  {
    Primitive p;
    p.kind = kind;
    where_.str("");
    ccGraphicProps props = pen();
    // Broken wide lines along an axis are moved to the surface's edges, whatever part of it they are drawn on: segments of
    // this sort stay inside, and the figures that may become such lines are solid.
    brokenWide_ = props.penWidth() >= 2 && props.penStyle() != ceSolidPen;
    if (brokenWide_ && (kind == kChain || kind == kEllipse2 || kind == kArc2))
      props.penStyle(ceSolidPen);
    std::ostringstream text;
    text << names[kind] << " width " << props.penWidth() << " style " << props.penStyle() << " join " << props.joinStyle()
         << " cap " << props.capStyle() << " fill " << props.fill();
    p.draw = body(kind, props);
    p.text = text.str() + where_.str();
    return p;
  }

private:
  ccColor color()
  {
    return within(0, 2) ? ccColor(static_cast<unsigned char>(within(40, 255)), static_cast<unsigned char>(within(0, 255)), 255)
                        : ccColor::yellowColor();
  }
  ccGraphicProps pen()
  {
    long const width = within(0, 2) ? within(0, 2) : within(3, 12);
    ccGraphicProps props(color(), width, static_cast<cePenStyle>(within(0, 1) ? 0 : within(1, 4)), within(0, 1) == 0);
    props.joinStyle(within(0, 1));
    props.capStyle(within(0, 2));
    return props;
  }
  ccPoint point()
  {
    double const reach = within(0, 9) ? 12 : 1e5;
    ccPoint const p(real(-reach, static_cast<double>(w_) + reach), real(-reach, static_cast<double>(h_) + reach));
    return noted(within(0, 1) ? p : ccPoint(std::floor(p.x()), std::floor(p.y())));
  }
  ccPoint near()
  {
    return noted(ccPoint(real(-8, static_cast<double>(w_) + 8), real(-8, static_cast<double>(h_) + 8)));
  }
  ccPoint noted(ccPoint const& p)
  {
    where_ << " (" << p.x() << ", " << p.y() << ')';
    return p;
  }
  std::vector<ccVector<2>> points(long count)
  {
    std::vector<ccVector<2>> all;
    for (long i = 0; i < count; ++i)
      all.push_back(point());
    return all;
  }
  ccRadian turn() { return ccRadian(within(0, 2) ? real(-3.2, 3.2) : 0); }
  std::vector<unsigned char> runPels(long w, long h)
  {
    std::vector<unsigned char> pels;
    while (static_cast<long>(pels.size()) < w * h)
      pels.insert(pels.end(), static_cast<std::size_t>(within(1, 9)), static_cast<unsigned char>(within(0, 5)));
    pels.resize(static_cast<std::size_t>(w * h));
    return pels;
  }

  std::function<void(ccUIScope&)> body(Kind kind, ccGraphicProps const& props)
  {
    double const rx = real(0, 25), ry = real(0, 25);
    ccRadian const angle = turn();
    where_ << " radii " << rx << ' ' << ry << " turn " << angle.value();
    switch (kind) {
    case kPoint: return [p = near(), props](ccUIScope& s) { s.draw(p, props); };
    case kSegment: {
      ccPoint a = point(), b = point();
      if (within(0, 2) == 0)
        b = within(0, 1) ? ccPoint(a.x(), b.y()) : ccPoint(b.x(), a.y());
      if (brokenWide_)
        for (ccPoint* p : {&a, &b})
          *p = ccPoint(std::clamp(p->x(), 0.0, static_cast<double>(w_ - 1)),
                       std::clamp(p->y(), 0.0, static_cast<double>(h_ - 1)));
      return [a, b, props](ccUIScope& s) { s.draw(ccLineSeg(a, b), props); };
    }
    case kChain: {
      ccPoint const a = near(), b = near();
      long const dx = within(-20, 20), dy = within(-20, 20);
      return [=](ccUIScope& s) {
        s.drawStart(a);
        s.drawTo(b, props);
        s.drawToRel(dx, dy, props);
      };
    }
    case kPolygon:
      return [polygon = ccPolygon(points(within(1, 7)), static_cast<int>(within(0, 2))), props](ccUIScope& s) {
        s.draw(polygon, props);
      };
    case kPolyline:
      return [line = ccPolyline(points(within(1, 7)), within(0, 1) == 0), props](ccUIScope& s) { s.draw(line, props); };
    case kRectangle:
      return [r = ccGenRect(near(), ccVector<2>(rx, ry), angle, ccVector<2>(real(0, rx), real(0, ry))), props](ccUIScope& s) {
        s.draw(r, props);
      };
    case kEllipse: return [e = ccEllipse(near(), rx, ry, angle), props](ccUIScope& s) { s.draw(e, props); };
    case kArc:
      return [a = ccEllipseArc(ccEllipse(near(), rx, ry, angle), turn(), ccRadian(real(-6.2, 6.2))), props](ccUIScope& s) {
        s.draw(a, props);
      };
    case kEllipse2:
      return [e = ccEllipse2(near(), within(0, 1) ? rx : 0, within(0, 1) ? ry : 0, angle), props](ccUIScope& s) {
        s.draw(e, props);
      };
    case kArc2:
      return [a = ccEllipseArc2(ccEllipse2(near(), rx, within(0, 1) ? ry : 0, angle), turn(), ccRadian(real(-6.2, 6.2))),
              props](ccUIScope& s) { s.draw(a, props); };
    case kText: {
      ccUIFormat format(static_cast<ccUIFormat::Alignment>(within(0, 8)));
      format.fontId(within(-1, static_cast<long>(fonts_.size()) - 1));
      std::string const text = within(0, 1) ? "Wg%" : "i\nBj";
      return [=, p = near(), back = within(0, 1) ? ccColor::passColor() : ccColor(200, 30, 90), fore = color()](ccUIScope& s) {
        s.draw(text, p, fore, back, format);
      };
    }
    case kRuns: {
      long const w = within(1, 50), h = within(1, 40);
      std::vector<unsigned char> const pels = runPels(w, h);
      return [image = ccRLEBuffer::fromPels(pels.data(), w, h, w), p = ccPoint(real(-30, 40), real(-30, 30)),
              transparent = within(0, 1) == 0](ccUIScope& s) {
        s.draw(image, p, std::vector<unsigned char>{249, 250, 251, 252}, transparent, 2);
      };
    }
    case kSet:
      return [r = ccUIRect(within(-10, 40), within(-10, 30), within(1, 50), within(1, 40)), c = color()](ccUIScope& s) {
        s.set(r, c);
      };
    default:
      return [p = near(), c = color(), surface = within(0, 1) == 0](ccUIScope& s) {
        s.fill(p, c, surface ? ccColor::greenColor() : ccColor::blackColor(), surface);
      };
    }
  }

  std::mt19937 random_;
  std::ostringstream where_;  // numbers of the figure at hand
  bool brokenWide_ = false;
  long w_, h_;
  std::vector<HFONT> fonts_;
};

}  // namespace

class ScopeRandom : public ScopeTest {
protected:
  using Pels = std::vector<std::uint32_t>;

  ScopeRandom()
  {
    plat::FontDesc desc;
    desc.height = 11;
    fonts_.push_back(plat::platform().objects.createFont(desc));
    desc.smooth = true;
    fonts_.push_back(plat::platform().objects.createFont(desc));
  }
  ~ScopeRandom() override
  {
    for (HFONT font : fonts_)
      plat::platform().objects.deleteFont(font);
  }

  // A ground with a few walls, so that floods have something to stop at.
  static void ground(ScopeProbe& scope)
  {
    scope.set(ccColor::blackColor());
    scope.set(ccUIRect(13, 0, 1, 22), ccColor::greenColor());
    scope.set(ccUIRect(13, 22, 20, 1), ccColor::greenColor());
  }

  static Pels pictureOf(ScopeProbe& scope, std::function<void(ccUIScope&)> const& draw)
  {
    ground(scope);
    draw(scope);
    return pelsOf(scope.surface());
  }

  void forEachDepth(unsigned seed, int count, std::function<void(ScopeProbe&, Maker&, Primitive const&)> const& test)
  {
    for (int const depth : allDepths) {
      screen(depth);
      ScopeProbe scope;
      create(scope);
      scope.palette(testColors());
      scope.colorMap(testColors());
      scope.fontTable(fonts_);
      Maker maker(seed + static_cast<unsigned>(depth), width, height, fonts_);
      for (int i = 0; i < rounds(count); ++i) {
        Primitive const p = maker.make(static_cast<Kind>(i % kKinds));
        SCOPED_TRACE(std::to_string(depth) + " round " + std::to_string(i) + ' ' + p.text);
        test(scope, maker, p);
        if (HasFailure())
          return;
      }
    }
  }

  // "" if the pels are the whole picture's inside any of the rectangles and the ground's elsewhere.
  static std::string wrong(Pels const& part, Pels const& whole, Pels const& below, std::vector<ccUIRect> const& seen)
  {
    for (long y = 0; y < height; ++y)
      for (long x = 0; x < width; ++x) {
        bool in = false;
        for (ccUIRect const& r : seen)
          in = in || r.within(ccPair<long>(x, y));
        std::size_t const at = static_cast<std::size_t>(y * width + x);
        if (part[at] != (in ? whole : below)[at])
          return "at " + std::to_string(x) + ' ' + std::to_string(y);
      }
    return "";
  }

private:
  std::vector<HFONT> fonts_;
};

TEST_F(ScopeRandom, changeHoldsEveryPelThatChanged)
{
  int changed = 0;
  forEachDepth(1, 560, [&](ScopeProbe& scope, Maker&, Primitive const& p) {
    ground(scope);
    Pels const before = pelsOf(scope.surface());
    scope.clearChange();
    p.draw(scope);
    Pels const after = pelsOf(scope.surface());
    ccUIRect const reported = scope.changeRect();
    for (long y = 0; y < height; ++y)
      for (long x = 0; x < width; ++x) {
        std::size_t const at = static_cast<std::size_t>(y * width + x);
        if (before[at] == after[at])
          continue;
        ++changed;
        ASSERT_TRUE(reported.within(ccPair<long>(x, y)))
            << x << ' ' << y << " outside " << reported.left() << ' ' << reported.top() << ' ' << reported.width() << ' '
            << reported.height();
      }
  });
  EXPECT_GT(changed, 5 * 560 * 10);
}

TEST_F(ScopeRandom, changeOfAPartHoldsItsPelsInItsOwnCoordinates)
{
  forEachDepth(2, 280, [](ScopeProbe& scope, Maker& maker, Primitive const& p) {
    ground(scope);
    Pels const before = pelsOf(scope.surface());
    ccUIRect const window = maker.rect();
    std::unique_ptr<ccUIScope> const part(scope.createChildScope(window, maker.within(0, 1) == 0));
    p.draw(*part);
    Pels const after = pelsOf(scope.surface());
    ccUIRect const reported = part->changeRect();
    EXPECT_EQ(reported & ccUIRect(ccPair<long>(), window.sz()), reported);
    for (long y = 0; y < height; ++y)
      for (long x = 0; x < width; ++x) {
        std::size_t const at = static_cast<std::size_t>(y * width + x);
        ASSERT_TRUE(before[at] == after[at] || reported.within(ccPair<long>(x, y) - window.ul()))
            << x << ' ' << y << " outside " << reported.left() << ' ' << reported.top() << ' ' << reported.width() << ' '
            << reported.height() << " of the part " << window.left() << ' ' << window.top() << ' ' << window.width() << ' '
            << window.height();
      }
  });
}

TEST_F(ScopeRandom, partOfASurfaceShowsThatPartOfTheWhole)
{
  forEachDepth(3, 420, [](ScopeProbe& scope, Maker& maker, Primitive const& p) {
    if (p.kind == kFlood)
      return;  // stops at the edge of the part
    Pels const whole = pictureOf(scope, p.draw);
    Pels const below = pictureOf(scope, [](ccUIScope&) {});
    ccUIRect const window = maker.rect();
    ccUIRect clip = maker.within(0, 1) ? ccUIRect() : maker.rect();
    Pels const part = pictureOf(scope, [&](ccUIScope&) {
      std::unique_ptr<ccUIScope> const child(scope.createChildScope(window, true));
      child->newDisplayClipRect(clip);
      p.draw(*child);
    });
    EXPECT_EQ(wrong(part, whole, below, {clip.isNull() ? window : window & clip}), "");
  });
}

TEST_F(ScopeRandom, partWithItsOwnOriginShowsTheSamePicture)
{
  forEachDepth(4, 280, [](ScopeProbe& scope, Maker& maker, Primitive const& p) {
    if (p.kind == kFlood)
      return;
    // The same figure in a part that begins at (0, 0) and in one of the same size elsewhere.
    long const dx = maker.within(0, 15), dy = maker.within(0, 10);
    long const w = width - 15, h = height - 10;
    auto const drawn = [&](long x, long y) {
      scope.set(ccColor::blackColor());
      std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(x, y, w, h), false));
      p.draw(*child);
      Pels const all = pelsOf(scope.surface());
      Pels part;
      for (long j = 0; j < h; ++j)
        for (long i = 0; i < w; ++i)
          part.push_back(all[static_cast<std::size_t>((y + j) * width + x + i)]);
      return part;
    };
    EXPECT_TRUE(drawn(0, 0) == drawn(dx, dy)) << dx << ' ' << dy;
  });
}

TEST_F(ScopeRandom, piecesMakeTheWhole)
{
  forEachDepth(5, 280, [](ScopeProbe& scope, Maker& maker, Primitive const& p) {
    if (p.kind == kFlood)
      return;  // does not know of what lies beyond its piece
    Pels const whole = pictureOf(scope, p.draw);
    long const x = maker.within(1, width - 1), y = maker.within(1, height - 1), z = maker.within(1, height - 1);
    ccUIRect const pieces[] = {ccUIRect(0, 0, x, y), ccUIRect(0, y, x, height - y), ccUIRect(x, 0, width - x, z),
                               ccUIRect(x, z, width - x, height - z)};
    bool const together = maker.within(0, 1) == 0;  // in one phase of the surface
    Pels const made = pictureOf(scope, [&](ccUIScope&) {
      scope.optimizeDrawing(together);
      for (ccUIRect const& piece : pieces) {
        std::unique_ptr<ccUIScope> const child(scope.createChildScope(piece, true));
        p.draw(*child);
      }
      scope.optimizeDrawing(false);
    });
    EXPECT_TRUE(made == whole) << x << ' ' << y << ' ' << z;
  });
}

TEST_F(ScopeRandom, displayClipOfAWholeSurfaceCutsWhatIsWrittenToPelsAndFills)
{
  forEachDepth(6, 280, [](ScopeProbe& scope, Maker& maker, Primitive const& p) {
    if (p.kind != kPoint && p.kind != kRuns && p.kind != kSet)
      return;
    Pels const whole = pictureOf(scope, p.draw);
    Pels const below = pictureOf(scope, [](ccUIScope&) {});
    ccUIRect const clip = maker.rect();
    Pels const part = pictureOf(scope, [&](ccUIScope&) {
      scope.newDisplayClipRect(clip);
      p.draw(scope);
      scope.newDisplayClipRect(ccUIRect());
    });
    EXPECT_EQ(wrong(part, whole, below, {clip}), "");
  });
}

TEST_F(ScopeRandom, optimizedDrawingMakesTheSamePicture)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    create(scope);
    scope.palette(testColors());
    scope.colorMap(testColors());
    for (int i = 0; i < rounds(20); ++i) {
      // One after the other on the surface and on parts of it by turns.
      Maker maker(700 + static_cast<unsigned>(i), width, height, {});
      std::vector<Primitive> list;
      std::vector<ccUIRect> windows;
      for (int k = 0; k < 20; ++k) {
        list.push_back(maker.make(static_cast<Kind>(maker.within(0, kKinds - 1))));
        windows.push_back(maker.rect());
      }
      auto const drawn = [&](bool together) {
        return pictureOf(scope, [&](ccUIScope&) {
          std::vector<std::unique_ptr<ccUIScope>> parts;
          scope.optimizeDrawing(together);
          for (std::size_t k = 0; k < list.size(); ++k) {
            parts.emplace_back(scope.createChildScope(windows[k], k % 2 == 0));
            list[k].draw(k % 3 == 0 ? static_cast<ccUIScope&>(scope) : *parts.back());
          }
          scope.optimizeDrawing(false);
        });
      };
      ASSERT_TRUE(drawn(true) == drawn(false)) << depth << " round " << i;
    }
  }
}
