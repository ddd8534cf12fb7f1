#include "package/shorten_path.h"

#include "runtime/number.h"

namespace zev {
namespace {

constexpr std::int32_t scaleTwips = 1;

/// Measures texts against one label, in whole pixels or in whole units of another scale.
class Ruler {
 public:
  Ruler(FormEngine& engine, const Form& form, const Label& label)
      : engine_(engine), form_(form), width_(toScale(label.Width.get())) {}

  bool fits(TextView text) const { return widthOf(text) <= width_; }
  bool fillsUp(TextView text) const { return widthOf(text) >= width_; }

 private:
  std::int32_t toScale(double width) const {
    return toLong(form_.ScaleMode == scaleTwips ? width / engine_.TwipsPerPixelX() : width);
  }
  std::int32_t widthOf(TextView text) const {
    return toScale(toLong(engine_.TextWidth(form_, text)));
  }

  FormEngine& engine_;
  const Form& form_;
  std::int32_t width_;
};

}  // namespace

Text ShortenPathForLabel(FormEngine& engine, TextView path, const Form& form, const Label& label) {
  if (trim(path).empty()) return {};
  const Ruler ruler(engine, form, label);
  const std::size_t backslash = path.rfind(u'\\');
  if (ruler.fits(path) || backslash == TextView::npos) return Text(path);
  TextView folder = path.substr(0, backslash);
  const TextView lastPart = path.substr(backslash + 1);
  if (ruler.fillsUp(lastPart)) return Text(lastPart);
  const Text name = join(u"...\\", trim(lastPart));
  folder = left(folder, len(folder) - 3);
  while (ruler.fillsUp(join(trim(folder), trim(name))) && folder.size() > 1) {
    folder.remove_suffix(1);
  }
  return join(trim(folder), trim(name));
}

}  // namespace zev
