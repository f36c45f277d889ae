// SPDX-License-Identifier: MIT
#include "shader/hlsl/Builder.h"

#include "shader/hlsl/Folding.h"
#include "shader/hlsl/HelperTemplates.h"
#include "shader/hlsl/Names.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace helvantine::hlsl
{

namespace
{

constexpr uint32_t maxDepth = 2000; ///< of an expression's tree, which is walked by recursion
constexpr size_t maxMessages = 64;
constexpr size_t maxMessageSize = 400; ///< bytes; names may be as long as the text

bool hasMessage(const std::vector<Message>& messages, Position at, const std::string& words)
{
    return std::ranges::any_of(messages, [&](const Message& one) {
        return one.at.line == at.line && one.at.file == at.file && one.text == words;
    });
}

void addMessage(std::vector<Message>& messages, Position at, const std::string& words)
{
    const std::string cut = words.size() <= maxMessageSize ? words : words.substr(0, maxMessageSize) + "…";
    if (messages.size() < maxMessages && !hasMessage(messages, at, cut))
        messages.push_back({at, cut});
}

} // namespace

void Builder::fail(Position at, const std::string& words)
{
    addMessage(m_program.errors, at, words);
}

void Builder::warn(Position at, const std::string& words)
{
    addMessage(m_program.warnings, at, words);
}

Expression* Builder::make(Expression::Kind kind, Position at, const Type* type, Expressions operands)
{
    Expression& made = m_program.expressions.emplace_back();
    made.kind = kind;
    made.at = at;
    made.type = type;
    made.operands = std::move(operands);
    for (const Expression* operand : made.operands) {
        made.hasEffects |= operand->hasEffects;
        made.isPixelOnly |= operand->isPixelOnly;
        made.depth = std::max(made.depth, operand->depth + 1);
    }
    if (made.depth > maxDepth) {
        fail(at, "the expression nests deeper than " + std::to_string(maxDepth));
        return error(at);
    }
    return &made;
}

Expression* Builder::error(Position at)
{
    return make(Expression::Kind::Error, at, types().error(), {});
}

const Value* Builder::keep(const Value& value)
{
    return &m_program.values.emplace_back(value);
}

Expression* Builder::constant(Position at, const Type* type, const Value& value)
{
    Expression* made = make(Expression::Kind::Constant, at, type, {});
    made->value = keep(value);
    if (type->isRowsMatrix())
        made->helper = instantiate("make", type);
    return made;
}

Expression* Builder::integer(Position at, int32_t value)
{
    return constant(at, types().scalar(Base::Int), {uint32_t(value)});
}

Expression* Builder::fill(Position at, const Type* type, float value)
{
    Value bits{};
    const uint32_t one =
        type->base == Base::Float ? std::bit_cast<uint32_t>(value) : uint32_t(int32_t(value));
    std::fill_n(bits.begin(), type->components(), one);
    return constant(at, type, bits);
}

Expression* Builder::variable(Position at, const Symbol* symbol)
{
    if (symbol->value && symbol->type->isNumber()) {
        Expression* known = constant(at, symbol->type, *symbol->value);
        known->symbol = symbol;
        return known;
    }
    Expression* made = make(Expression::Kind::Variable, at, symbol->type, {});
    made->symbol = symbol;
    made->isAssignable = !symbol->isConst && symbol->kind != Symbol::Kind::Member;
    return made;
}

Expression* Builder::spelled(Position at, const Type* type, const std::string& pattern, Expressions operands,
                             const Helper* helper)
{
    Expression* made = make(Expression::Kind::Spelled, at, type, std::move(operands));
    made->text = pattern;
    made->helper = helper;
    return made;
}

Expression* Builder::fold(Position at, const Type* type, const std::string& operation,
                          const Expressions& operands)
{
    Value value{};
    std::vector<Operand> known;
    for (const Expression* operand : operands) {
        if (!operand->value || !operand->type->isNumber())
            return nullptr;
        known.push_back({operand->type, operand->value});
    }
    return type->isNumber() && foldOperation(operation, *type, known, value) ? constant(at, type, value)
                                                                             : nullptr;
}

const Type* Builder::like(const Type* shape, Base base)
{
    return types().withBase(shape, base);
}

const Type* Builder::rowType(const Type* matrix)
{
    return types().vector(matrix->base, matrix->columns);
}

std::string Builder::rowOf(const Type* matrix, const std::string& name, uint32_t row) const
{
    return name + (matrix->isRowsMatrix() ? ".r[" : "[") + std::to_string(row) + "]";
}

namespace
{

std::string replaceOperands(const std::string& pattern, const std::vector<std::string>& operands)
{
    std::string text;
    for (size_t i = 0; i < pattern.size(); ++i)
        if (pattern[i] == '$' && i + 1 < pattern.size())
            text += operands[size_t(pattern[++i] - '0')];
        else
            text += pattern[i];
    return text;
}

std::string parameterName(size_t i)
{
    return std::string(1, char('a' + i));
}

} // namespace

const Helper* Builder::define(const std::string& name, const std::string& result, const Expressions& operands,
                              const std::string& body, std::vector<const Helper*> uses)
{
    std::string full = name;
    std::string parameters;
    std::vector<const Type*> types;
    for (size_t i = 0; i < operands.size(); ++i) {
        const Type* type = operands[i]->type;
        full += "_" + type->spelling();
        parameters += (i ? ", " : "") + type->spelling() + " " + parameterName(i);
        types.push_back(type);
    }
    return defineText(full, result, parameters, body, std::move(types), std::move(uses));
}

const Helper* Builder::defineText(std::string name, const std::string& result, const std::string& parameters,
                                  const std::string& body, std::vector<const Type*> types,
                                  std::vector<const Helper*> uses)
{
    std::ranges::replace_if(
        name, [](char c) { return c == '<' || c == '>'; }, '_');
    name = helperPrefix + name;
    const auto [place, isNew] = m_helpers.try_emplace(name);
    if (!isNew)
        return place->second;
    Helper& helper = m_program.helpers.emplace_back();
    helper.name = name;
    helper.text = result + " " + name + "(" + parameters + ") { " + body + " }\n";
    helper.types = std::move(types);
    helper.uses = std::move(uses);
    return place->second = &helper;
}

const Helper* Builder::instantiate(const std::string& name, const Type* shape)
{
    const auto [place, isNew] = m_helpers.try_emplace(name + ":" + shape->spelling());
    if (!isNew)
        return place->second;
    Helper& helper = m_program.helpers.emplace_back();
    m_helpers[name + ":" + shape->spelling()] = &helper;
    helper.types.push_back(shape);
    if (name == "make") {
        helper.name = helperPrefix + ("make_" + shape->spelling());
        helper.text = spellRowsConstructor(*shape, helper.name);
        return &helper;
    }
    const HelperTemplate& pattern = getHelperTemplate(name);
    const TemplateNames names{like(shape, Base::Float)->spelling(), like(shape, Base::Int)->spelling(),
                              like(shape, Base::Uint)->spelling(), like(shape, Base::Bool)->spelling(),
                              std::to_string(shape->columns)};
    helper.name = spellTemplateName(name, names);
    helper.text = spellTemplate(pattern, names);
    for (const std::string& used : pattern.uses)
        helper.uses.push_back(instantiate(used, shape));
    return &helper;
}

Expression* Builder::componentwise(Position at, const Type* result, const std::string& operation,
                                   const Expressions& operands)
{
    if (Expression* known = fold(at, result, operation, operands))
        return known;
    const Type* shape = operands.front()->type;
    const Type* inner = shape->isMatrix() ? rowType(shape) : shape;
    std::string pattern = operation;
    const Helper* helper = nullptr;
    if (isHelperTemplate(operation)) {
        helper = instantiate(operation, inner);
        pattern = helper->name + "(";
        for (size_t i = 0; i < operands.size(); ++i)
            pattern += (i ? ", $" : "$") + std::to_string(i);
        pattern += ")";
    } else if (operation.find('T') != std::string::npos) {
        // $T: the type of the result for this shape
        const std::string type = (shape->isMatrix() ? rowType(result) : result)->spelling();
        for (size_t found = 0; (found = pattern.find("$T")) != std::string::npos;)
            pattern.replace(found, 2, type);
    }
    if (!shape->isMatrix())
        return spelled(at, result, pattern, operands, helper);
    std::string body = result->spelling() + " r;";
    for (uint32_t row = 0; row < shape->rows; ++row) {
        std::vector<std::string> rows;
        for (size_t i = 0; i < operands.size(); ++i)
            rows.push_back(rowOf(operands[i]->type, parameterName(i), row));
        body += " " + rowOf(result, "r", row) + " = " + replaceOperands(pattern, rows) + ";";
    }
    const auto [place, isNew] = m_helpers.try_emplace(pattern + ":" + result->spelling() + shape->spelling());
    if (isNew) {
        const std::string name = "rows" + std::to_string(m_program.helpers.size());
        std::vector<const Helper*> uses;
        if (helper)
            uses.push_back(helper);
        const Helper* made = define(name, result->spelling(), operands, body + " return r;", std::move(uses));
        m_program.helpers.back().types.push_back(result);
        m_helpers[pattern + ":" + result->spelling() + shape->spelling()] = made;
    }
    const Helper* rows = m_helpers[pattern + ":" + result->spelling() + shape->spelling()];
    std::string called = rows->name + "(";
    for (size_t i = 0; i < operands.size(); ++i)
        called += (i ? ", $" : "$") + std::to_string(i);
    return spelled(at, result, called + ")", operands, rows);
}

Expression* Builder::rowElement(Expression* matrix, uint32_t row, uint32_t column)
{
    if (matrix->value)
        return constant(matrix->at, types().scalar(matrix->type->base),
                        {(*matrix->value)[row * matrix->type->columns + column]});
    Expression* made =
        make(Expression::Kind::MatrixSwizzle, matrix->at, types().scalar(matrix->type->base), {matrix});
    made->count = 1;
    made->components[0] = uint8_t(row * 4 + column);
    made->isAssignable = matrix->isAssignable;
    return made;
}

Expression* Builder::component(Expression* object, uint32_t number)
{
    const Type* type = object->type;
    if (type->isScalar())
        return object;
    if (type->isMatrix())
        return rowElement(object, number / type->columns, number % type->columns);
    return member(object->at, object, std::string_view("xyzw").substr(number, 1));
}

bool Builder::wholeNumber(Expression* expression, const char* what, uint32_t& number)
{
    if (expression->type->isError())
        return false;
    if (expression->value && expression->type->isScalar()) {
        const Expression* whole = convert(expression, types().scalar(Base::Int));
        number = (*whole->value)[0];
        if (int32_t(number) >= 0 || expression->type->base != Base::Float)
            return true;
    }
    fail(expression->at, std::string(what) + " isn't a whole number that is known while compiling");
    return false;
}

} // namespace helvantine::hlsl
