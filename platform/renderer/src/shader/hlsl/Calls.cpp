// SPDX-License-Identifier: MIT
#include "shader/hlsl/Builder.h"
#include "shader/hlsl/FunctionMaker.h"

#include <algorithm>
#include <string>

namespace helvantine::hlsl
{

namespace
{

std::string describe(const Expressions& arguments)
{
    std::string text;
    for (const Expression* argument : arguments)
        text += (text.empty() ? "" : ", ") + argument->type->name();
    return text;
}

size_t countRequired(const Function& function)
{
    return size_t(std::ranges::count_if(function.parameters,
                                        [](const Parameter& one) { return one.standard == nullptr; }));
}

} // namespace

Expression* Builder::call(Position at, const std::vector<Function*>& overloads, Expressions arguments,
                          bool isMethod)
{
    for (Expression* argument : arguments)
        if (argument->type->isError())
            return argument;
    const Function* best = nullptr;
    int bestDistance = 0;
    bool isAmbiguous = false;
    for (const Function* one : overloads) {
        if (arguments.size() > one->parameters.size() || arguments.size() < countRequired(*one))
            continue;
        int sum = 0;
        for (size_t i = 0; i < arguments.size() && sum >= 0; ++i) {
            const Parameter& parameter = one->parameters[i];
            const Type* from = arguments[i]->type;
            int each = parameter.isIn ? distance(from, parameter.symbol->type) : 0;
            if (parameter.isOut && each >= 0)
                each = std::max(each, distance(parameter.symbol->type, from));
            sum = each < 0 ? -1 : sum + each;
        }
        if (sum < 0)
            continue;
        isAmbiguous = best && sum == bestDistance;
        if (!best || sum < bestDistance) {
            best = one;
            bestDistance = sum;
        }
    }
    const std::string called = "'" + overloads[0]->name + "(" + describe(arguments) + ")'";
    if (!best && overloads.size() == 1) {
        const Function& only = *overloads[0];
        if (arguments.size() > only.parameters.size() || arguments.size() < countRequired(only))
            fail(at,
                 called + ": the function takes " + std::to_string(only.parameters.size()) + " arguments");
        else
            for (size_t i = 0; i < arguments.size(); ++i)
                if (distance(arguments[i]->type, only.parameters[i].symbol->type) < 0)
                    fail(at, called + ": '" + arguments[i]->type->name() + "' doesn't convert to '" +
                                 only.parameters[i].symbol->type->name() + "', the type of '" +
                                 only.parameters[i].symbol->name + "'");
        return error(at);
    }
    if (!best || isAmbiguous) {
        fail(at, called +
                     (best ? " fits several functions equally" : " fits none of the functions of that name"));
        return error(at);
    }
    return bindArguments(at, *best, std::move(arguments), isMethod);
}

Expression* Builder::bindArguments(Position at, const Function& function, Expressions arguments,
                                   bool copiesObject)
{
    bool needsConversion = false;
    if (refusesUnknownElement(arguments))
        return error(at);
    for (size_t i = 0; i < function.parameters.size(); ++i) {
        const Parameter& parameter = function.parameters[i];
        const Type* type = parameter.symbol->type;
        if (i >= arguments.size()) {
            arguments.push_back(parameter.standard);
        } else if (parameter.isOut) {
            const bool isCopied = copiesObject && i == 0 && !arguments[i]->isAssignable;
            if (!isCopied && !isAssignable(arguments[i]->at, arguments[i]))
                return error(at);
            needsConversion |=
                isCopied || arguments[i]->type != type ||
                (arguments[i]->kind == Expression::Kind::MatrixSwizzle && arguments[i]->count > 1);
        } else {
            arguments[i] = implicit(arguments[i], type);
        }
        if (arguments[i]->type->isError())
            return arguments[i];
    }
    if (needsConversion)
        return convertOutputs(at, function, arguments);
    return callFunction(at, function, std::move(arguments));
}

/// A function with the arguments' own types converts on the way in and back.
Expression* Builder::convertOutputs(Position at, const Function& function, const Expressions& arguments)
{
    for (const Expression* argument : arguments)
        if (argument->kind == Expression::Kind::MatrixSwizzle && argument->count > 1) {
            fail(argument->at, "components of a matrix can't be what a function writes to; use a variable");
            return error(at);
        }
    FunctionMaker wrapper(*this, at, function.result);
    Expressions handed;
    std::vector<std::pair<Expression*, Expression*>> results;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const Parameter& parameter = function.parameters[i];
        // What can't be written to is a copy: so a method works on what a call gives.
        const bool isOut = parameter.isOut && arguments[i]->isAssignable;
        Expression* outer = wrapper.parameter(arguments[i]->type, parameter.isIn, isOut);
        handed.push_back(outer);
        if (outer->type == parameter.symbol->type)
            continue;
        const Type* type = parameter.symbol->type;
        handed.back() = wrapper.local(type, parameter.isIn ? implicit(outer, type) : nullptr);
        results.emplace_back(outer, handed.back());
    }
    Expression* inner = callFunction(at, function, handed);
    Expression* result = nullptr;
    if (function.result->isVoid())
        wrapper.evaluate(inner);
    else
        result = wrapper.local(function.result, inner);
    for (const auto& [to, from] : results)
        wrapper.evaluate(assign(at, "=", to, from));
    if (result)
        wrapper.giveBack(result);
    return callFunction(at, *wrapper.finish(), arguments);
}

Expression* Builder::callFunction(Position at, const Function& function, Expressions arguments)
{
    Expression* made = make(Expression::Kind::Call, at, function.result, std::move(arguments));
    made->function = &function;
    made->hasEffects = true;
    return made;
}

} // namespace helvantine::hlsl
