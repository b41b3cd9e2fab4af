#pragma once

#include <kvbase/kvbase.h>

#include <string>
#include <vector>

namespace kvtool {

/// How many levels the tool prints and writes. The text form indents by the depth, so a hostile file could
/// ask for a text as large as the square of its size.
constexpr std::size_t kDeepestTree = 256;

/// A file of values in text form, read whole.
class ValueFile {
public:
    /// Reads the file. Throws BadInput with the line when it isn't a dictionary in text form.
    explicit ValueFile(const std::string &file);
    /// The same, or an empty dictionary when there is no such file.
    static ValueFile openOrNew(const std::string &file);

    const std::string &file() const { return m_file; }
    KV_UValDict &dict() { return m_dict; }

    /// What the file's text holds that its values don't (value_survey.h). Writing the values back over the
    /// file loses it.
    const std::vector<std::string> &unkept() const { return m_unkept; }
    /// Whether there are more levels than kDeepestTree.
    bool isTooDeep();
    /// What the text form can't hold of the values as they now are, at most ten lines "PATH: reason". Not to
    /// be asked of values that are too deep.
    std::vector<std::string> unwritable();

    /// Writes the values to a file, which is replaced wholly or not at all. Throws BadInput, and the file
    /// stays as it was, when the values are too deep, or couldn't be read again; without force also when
    /// unwritable(), or unkept() and the file is the one that was read, tell of a loss.
    void write(const std::string &to, bool force);

private:
    struct New {};
    ValueFile(const std::string &file, New) : m_file(file) {}
    std::string textForm();
    std::vector<std::string> unreadableKeys();

    std::string m_file;
    KV_UValDict m_dict{0};
    std::vector<std::string> m_unkept;
};

}  // namespace kvtool
