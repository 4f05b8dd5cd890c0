#pragma once

#include <glbinding/AbstractFunction.h>
#include <glbinding/AbstractValue.h>
#include <glbinding/Binding.h>
#include <glbinding/CallbackMask.h>
#include <glbinding/FunctionCall.h>
#include <glbinding/callbacks.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// Records every GL call made through glbinding, on any thread and in any
// context, while it lives: the function's name, its arguments and its result
// as glbinding prints them. One log at a time.
//
// glbinding keeps its callback switches per context, so the log switches
// them on in the context bound when it starts and in every context bound
// while it runs. They stay on afterwards, which only costs time.
class GLCallLog {
public:
    struct Call {
        std::string name;
        std::vector<std::string> arguments;
        std::string result;
    };

    GLCallLog()
    {
        static std::once_flag once;
        std::call_once(once, [] {
            glbinding::Binding::addContextSwitchCallback([](glbinding::ContextHandle) {
                if (sActive.load() != nullptr) {
                    glbinding::addCallbackMask(kMask);
                }
            });
        });
        sActive.store(this);
        // Whatever listened before (the GL test fixture's error check) keeps
        // hearing every call.
        mPrevious = glbinding::afterCallback();
        glbinding::setAfterCallback([previous = mPrevious](const glbinding::FunctionCall& call) {
            if (previous) {
                previous(call);
            }
            // glGetError is the fixture's check after every call.
            GLCallLog* log = sActive.load();
            if (log && std::string(call.function->name()) != "glGetError") {
                log->record(call);
            }
        });
        glbinding::addCallbackMask(kMask);
    }

    ~GLCallLog()
    {
        sActive.store(nullptr);
        glbinding::setAfterCallback(mPrevious);
    }

    GLCallLog(const GLCallLog&) = delete;
    GLCallLog& operator=(const GLCallLog&) = delete;

    // The calls of `name`, or every call for an empty name.
    std::vector<Call> callsOf(const std::string& name = {}) const
    {
        std::lock_guard<std::mutex> lock(mMutex);
        std::vector<Call> result;
        for (const Call& call : mCalls) {
            if (name.empty() || call.name == name) {
                result.push_back(call);
            }
        }
        return result;
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> result;
        for (const Call& call : callsOf()) {
            result.push_back(call.name);
        }
        return result;
    }

    std::size_t count(const std::string& name) const { return callsOf(name).size(); }

    // The GL names that calls of `name` returned, e.g. glCreateShader's.
    std::vector<unsigned> returnedNames(const std::string& name) const
    {
        std::vector<unsigned> result;
        for (const Call& call : callsOf(name)) {
            result.push_back(static_cast<unsigned>(std::stoul(call.result)));
        }
        return result;
    }

    void clear()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mCalls.clear();
    }

private:
    // After, Parameters and ReturnValue; glbinding's operator| is not constexpr.
    static constexpr glbinding::CallbackMask kMask = static_cast<glbinding::CallbackMask>(
        static_cast<unsigned char>(glbinding::CallbackMask::After) |
        static_cast<unsigned char>(glbinding::CallbackMask::ParametersAndReturnValue));

    void record(const glbinding::FunctionCall& call)
    {
        Call entry{call.function->name(), {}, call.returnValue ? call.returnValue->asString() : std::string()};
        for (const glbinding::AbstractValue* value : call.parameters) {
            entry.arguments.push_back(value->asString());
        }
        std::lock_guard<std::mutex> lock(mMutex);
        mCalls.push_back(std::move(entry));
    }

    static inline std::atomic<GLCallLog*> sActive{nullptr};

    glbinding::FunctionCallback mPrevious;
    mutable std::mutex mMutex;
    std::vector<Call> mCalls;
};

}  // namespace Halvane::Quorvex::Testing
