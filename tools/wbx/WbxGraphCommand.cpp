// wbx graph FILE [--values] [--out DIR]: the graph dump of every equation of
// a model, one ".WBGraph" file each (ZorWBFactoryGraph), with the current
// values in the labels when --values is given.
//
// The files are named LOG_MODEL_E0.WBGraph, LOG_MODEL_E1.WBGraph, ... in
// equation order: LOG is the log name of the environment variable
// "VTS_LOG_NAME", "wbx" when it is not set; MODEL is the model file's name
// without its extension. They go into DIR, else into the directory of the
// environment variable "QRM_VTS_OUT", else into the current directory. The
// tool sets both variables for the dump and puts them back afterwards; it
// prints the path of each file written, one a line.
//
// wbx graph FILE --dot [--values]: the same graph, all equations in one
// Graphviz digraph, on standard output (render it with "dot -Tsvg").
//
// wbx graph FILE --model [--out DIR | --dot]: the parsed model instead, as
// the parser made it of the text (ZorWBModelGraph): one file
// LOG_MODEL_model.WBGraph, placed as above, or DOT on standard output.
//
// Exit status: 0; 1 when the model holds no equation; 2 for a bad command
// line, a file that cannot be read or has diagnostics, or a directory that
// cannot be written.

#include <cstdlib>
#include <filesystem>

#include "WbxCommand.h"
#include "WbxModelFile.h"
#include "output/ZorWBFactoryGraph.h"
#include "output/ZorWBModelGraph.h"
#include "qel/ZorQelGetEnv.h"

namespace {

struct Options {
    std::string path;
    std::string directory;
    bool values = false;
    bool dot = false;
    bool model = false;
};

int ReadOptions(WbxContext& context, Options& options) {
    const std::vector<std::string>& arguments = context.arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--values") {
            options.values = true;
        } else if (argument == "--dot") {
            options.dot = true;
        } else if (argument == "--model") {
            options.model = true;
        } else if (argument == "--out") {
            if (i + 1 == arguments.size()) return WbxUsageError(context, "--out needs a DIR");
            options.directory = arguments[++i];
        } else if (argument.rfind("--", 0) == 0 || !options.path.empty()) {
            return WbxUsageError(context, "unexpected argument '" + argument + "'");
        } else {
            options.path = argument;
        }
    }
    if (options.path.empty()) return WbxUsageError(context, "graph needs a FILE");
    if (options.dot && !options.directory.empty())
        return WbxUsageError(context, "--dot writes on standard output: no --out with it");
    if (options.model && options.values)
        return WbxUsageError(context, "--values draws factory values: no --model with it");
    return WbxExit::Success;
}

void SetEnvironment(const char* name, const std::string& value, bool set) {
#if defined(_WIN32)
    _putenv_s(name, set ? value.c_str() : "");
#else
    if (set)
        setenv(name, value.c_str(), 1);
    else
        unsetenv(name);
#endif
}

// Sets an environment variable for the life of the object.
class ScopedEnvironment {
  public:
    ScopedEnvironment(const char* name, const std::string& value) : _name(name) {
        const char* old = std::getenv(name);
        _had = old != nullptr;
        if (_had) _old = old;
        SetEnvironment(name, value, true);
    }
    ~ScopedEnvironment() { SetEnvironment(_name, _old, _had); }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  private:
    const char* _name;
    std::string _old;
    bool _had = false;
};

std::string OrDefault(const ZorQelString& value, const char* fallback) {
    return value.IsEmpty() ? fallback : value.GetString();
}

// The directory the files go into, empty (after a message) when it is not
// one.
std::string Directory(WbxContext& context, const Options& options) {
    std::string directory =
        options.directory.empty() ? OrDefault(ZorQelGetEnv("QRM_VTS_OUT"), ".") : options.directory;
    std::error_code error;
    if (std::filesystem::is_directory(directory, error)) return directory;
    WbxUsageError(context, "cannot write in '" + directory + "': not a directory");
    return "";
}

int WriteModel(WbxContext& context, const Options& options, const ZorWBModel& model) {
    ZorWBModelGraph graph(model);
    ZorQelStream stream;
    if (options.dot) {
        stream.OpenMemory();
        graph.WriteDot(stream);
        context.out << stream.GetText();
        return WbxExit::Success;
    }
    std::string directory = Directory(context, options);
    if (directory.empty()) return WbxExit::Usage;
    std::string name = OrDefault(ZorQelGetEnv("VTS_LOG_NAME"), "wbx") + "_" +
                       std::filesystem::path(options.path).stem().string() + "_model.WBGraph";
    std::string path = ZorQelMakePath(directory, name).GetString();
    if (!stream.OpenFile(path) || !graph.WriteWBGraph(stream))
        return WbxUsageError(context, "cannot write '" + path + "'");
    stream.Close();
    context.out << path << "\n";
    return WbxExit::Success;
}

int WriteFiles(WbxContext& context, const Options& options, ZorWBFactory& factory) {
    std::string directory = Directory(context, options);
    if (directory.empty()) return WbxExit::Usage;
    std::error_code error;
    ScopedEnvironment out("QRM_VTS_OUT", directory);
    ScopedEnvironment log("VTS_LOG_NAME", OrDefault(ZorQelGetEnv("VTS_LOG_NAME"), "wbx"));
    std::string model = std::filesystem::path(options.path).stem().string();
    // The files to expect; old ones are removed first, so that a file seen
    // afterwards is one this dump wrote.
    std::vector<std::string> files;
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        ZorQelString name(model);
        name.Append("_E").AppendInt(i);
        files.push_back(ZorWBFactoryGraph(factory.GetEquation(i), name).GetFilePath().GetString());
        std::filesystem::remove(files.back(), error);
    }
    ZorWBFactoryGraph(&factory, model).GenerateWBTreeFile(options.values);
    for (const std::string& file : files) {
        if (!std::filesystem::exists(file, error))
            return WbxUsageError(context, "cannot write '" + file + "'");
        context.out << file << "\n";
    }
    return WbxExit::Success;
}

}  // namespace

int WbxGraphCommand(WbxContext& context) {
    Options options;
    if (ReadOptions(context, options) != WbxExit::Success) return WbxExit::Usage;
    WbxModelFile file;
    if (file.Load(context, options.path) != WbxExit::Success) return WbxExit::Usage;
    if (!file.HasEquations(context, "draw")) return WbxExit::Failure;
    if (options.model) return WriteModel(context, options, file.GetModel());
    ZorWBFactory& factory = file.GetFactory();
    if (!options.dot) return WriteFiles(context, options, factory);
    ZorQelStream stream;
    stream.OpenMemory();
    ZorWBFactoryGraph(&factory).WriteDot(stream, options.values);
    context.out << stream.GetText();
    return WbxExit::Success;
}
