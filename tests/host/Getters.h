#pragma once

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

/// The keys that the public getters without arguments of a header of the library ask for.
inline std::vector<std::string> KeysOfGetters(const std::string& header)
{
    std::ifstream file(TESTS_DIR "/../src/" + header);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    text.resize(std::min({text.find("protected:"), text.find("private:"), text.size()}));
    const std::regex getter(R"(\b(Ge[tA-Z]\w*)\(\) const)");
    std::vector<std::string> keys;
    for (std::sregex_iterator match(text.begin(), text.end(), getter), end; match != end; ++match) {
        const std::string name = (*match)[1];
        keys.push_back(name.starts_with("Get") ? name.substr(3) : name);
    }
    return keys;
}
