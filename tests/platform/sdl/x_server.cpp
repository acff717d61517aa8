#include "tests/platform/sdl/x_server.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace xserver {
namespace {

struct Server {
  explicit Server(char const* wanted) : mode(wanted) {}

  char const* mode;
  pid_t process = 0;
  std::string name;
  Display* display = nullptr;

  bool start();
  void stop();
};

Server servers[4] = {Server("1024x768x24"), Server("800x600x16"), Server("400x300x8"), Server("400x300x30")};
Display*& display = servers[0].display;
bool failed = false;  // the last request

int noteError(Display*, XErrorEvent*)
{
  failed = true;
  return 0;
}

bool Server::start()
{
  int ends[2];
  if (pipe(ends) != 0)
    return false;
  process = fork();
  if (process == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    close(ends[0]);
    std::string const to = std::to_string(ends[1]);
    if (std::freopen("/dev/null", "w", stderr))
      execlp("Xvfb", "Xvfb", "-displayfd", to.c_str(), "-screen", "0", mode, "-nolisten", "tcp", "-noreset",
             static_cast<char*>(nullptr));
    _exit(127);
  }
  close(ends[1]);
  char c;
  while (read(ends[0], &c, 1) == 1 && c != '\n')
    name += c;
  close(ends[0]);
  if (name.empty())
    return false;
  name.insert(0, ":");
  display = XOpenDisplay(name.c_str());
  return display != nullptr;
}

void Server::stop()
{
  if (display)
    XCloseDisplay(display);
  if (process > 0) {
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
  }
}

}  // namespace

bool start() { return std::all_of(std::begin(servers), std::end(servers), [](Server& s) { return s.start(); }); }

void stop()
{
  for (Server& server : servers)
    server.stop();
}

std::string name(int server) { return servers[server].name; }

Display* connection() { return display; }

std::vector<plat::u32> grabWindow(Id window, plat::Rect const& r, int server)
{
  XImage* const image = XGetImage(servers[server].display, window, r.left, r.top, static_cast<unsigned>(r.width()),
                                  static_cast<unsigned>(r.height()), AllPlanes, ZPixmap);
  if (!image)
    throw std::runtime_error("no such pels");
  std::vector<plat::u32> pels;
  for (int y = 0; y < r.height(); ++y)
    for (int x = 0; x < r.width(); ++x)
      pels.push_back(static_cast<plat::u32>(XGetPixel(image, x, y)));
  XDestroyImage(image);
  return pels;
}

std::vector<plat::u32> colorsOf(Id window, std::vector<plat::u32> const& pels, int server)
{
  Display* const from = servers[server].display;
  XWindowAttributes attributes;
  XGetWindowAttributes(from, window, &attributes);
  std::vector<plat::u32> colors;
  for (plat::u32 const pel : pels) {
    XColor color{};
    color.pixel = pel;
    XQueryColor(from, attributes.colormap, &color);
    colors.push_back(plat::u32(color.red >> 8) << 16 | plat::u32(color.green >> 8) << 8 | plat::u32(color.blue >> 8));
  }
  return colors;
}

std::vector<plat::u32> grab(plat::Rect const& r)
{
  std::vector<plat::u32> pels = grabWindow(XDefaultRootWindow(display), r);
  for (plat::u32& pel : pels)
    pel &= 0xFFFFFF;
  return pels;
}

plat::Point pointer()
{
  Window root, child;
  plat::Point at, inside;
  unsigned mask;
  XQueryPointer(display, XDefaultRootWindow(display), &root, &child, &at.x, &at.y, &inside.x, &inside.y, &mask);
  return at;
}

Id makeWindow(plat::Rect const& r, unsigned long color, bool overrideRedirect)
{
  XSetWindowAttributes wanted;
  wanted.override_redirect = overrideRedirect;
  wanted.background_pixel = color;
  Id const window = XCreateWindow(display, XDefaultRootWindow(display), r.left, r.top,
                                  static_cast<unsigned>(r.width()), static_cast<unsigned>(r.height()), 0,
                                  CopyFromParent, InputOutput, nullptr, CWOverrideRedirect | CWBackPixel, &wanted);
  XMapRaised(display, window);
  XSync(display, False);
  return window;
}

void moveWindow(Id window, plat::Rect const& r)
{
  XMoveResizeWindow(display, window, r.left, r.top, static_cast<unsigned>(r.width()),
                    static_cast<unsigned>(r.height()));
  XSync(display, False);
}

void raiseWindow(Id window)
{
  XRaiseWindow(display, window);
  XSync(display, False);
}

void destroyWindow(Id window)
{
  XDestroyWindow(display, window);
  XSync(display, False);
}

void focusWindow(Id window)
{
  XSetInputFocus(display, window, RevertToParent, CurrentTime);
  XSync(display, False);
}

void askToClose(Id window)
{
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  XSendEvent(display, window, False, NoEventMask, &event);
  XSync(display, False);
}

std::string title(Id window)
{
  Atom type;
  int format;
  unsigned long count, rest;
  unsigned char* text = nullptr;
  XGetWindowProperty(display, window, XInternAtom(display, "_NET_WM_NAME", False), 0, 100, False, AnyPropertyType,
                     &type, &format, &count, &rest, &text);
  std::string const found = text ? reinterpret_cast<char const*>(text) : "";
  if (text)
    XFree(text);
  return found;
}

bool isWindow(Id window)
{
  XSync(display, False);
  XErrorHandler const former = XSetErrorHandler(&noteError);
  failed = false;
  XWindowAttributes attributes;
  XGetWindowAttributes(display, window, &attributes);
  XSync(display, False);
  XSetErrorHandler(former);
  return !failed;
}

Id visual32()
{
  XVisualInfo wanted;
  if (!XMatchVisualInfo(display, 0, 32, TrueColor, &wanted))
    throw std::runtime_error("the server has no such visual");
  return wanted.visualid;
}

void tool(std::vector<std::string> const& arguments)
{
  pid_t const child = fork();
  if (child == 0) {
    std::vector<char*> list;
    std::string program = "xdotool";
    list.push_back(program.data());
    std::vector<std::string> copies = arguments;
    for (std::string& a : copies)
      list.push_back(a.data());
    list.push_back(nullptr);
    execvp("xdotool", list.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0)
    throw std::runtime_error("xdotool " + arguments.front() + " failed");
}

}  // namespace xserver
