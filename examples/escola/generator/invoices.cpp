#include "escola/generator/invoices.h"

#include <algorithm>
#include <array>
#include <vector>

#include "escola/generator/people.h"

namespace escola {

namespace {

struct Payment {
  Moment at;
  std::int64_t principal;  // in cents, as the charges
  std::int64_t charges;
  std::string_view form;
};

struct Invoice {
  int id;
  int month;
  Day due;
  std::int64_t value;  // in cents, as the discount
  std::int64_t discount;
  bool cancelled;

  std::int64_t net() const { return value - discount; }
};

/// Fine of 2 %, and 1 % a month by the day.
std::int64_t lateCharges(std::int64_t amount, int days) {
  return days <= 0 ? 0 : amount * 2 / 100 + amount * days / 3000;
}

/// Days from the due date to the payment, negative for early ones; nothing when it is never paid.
std::optional<int> drawDelay(Random& random, int habit) {
  int const early = -random.below(7);
  int const late = random.between(1, 75);
  int const draw = random.below(100);
  if (habit == 0) {
    return draw < 96 ? early : late / 4 + 1;
  }
  if (habit == 1) {
    return draw < 50 ? early : draw < 97 ? late : std::optional<int>();
  }
  return draw < 25 ? early : draw < 55 ? late + 30 : std::optional<int>();
}

Payment paymentAt(Random& random, Day day, std::int64_t principal, std::int64_t charges) {
  static constexpr std::array<std::string_view, 5> kForms{"pix", "pix", "boleto", "cartão",
                                                          "dinheiro"};
  Moment const at = Moment(day) + std::chrono::seconds(random.between(7 * 3600, 21 * 3600));
  return {at, principal, charges, random.pick(std::span<std::string_view const>(kForms))};
}

/// What is paid on the invoice one day; part of it may lie after the day on which the database is
/// looked at.
std::vector<Payment> drawPayments(Random& random, Invoice const& invoice, int habit) {
  std::optional<int> const delay = drawDelay(random, habit);
  bool const inTwoParts = habit != 0 && random.chance(160);
  int const gap = random.between(5, 40);
  if (!delay || invoice.cancelled || invoice.net() == 0) {
    return {};
  }
  Day const day = invoice.due + std::chrono::days(*delay);
  std::int64_t const part = inTwoParts ? invoice.net() * 6 / 10 : invoice.net();
  std::vector<Payment> payments{paymentAt(random, day, part, lateCharges(part, *delay))};
  if (inTwoParts && random.chance(700)) {
    std::int64_t const rest = invoice.net() - part;
    payments.push_back(
        paymentAt(random, day + std::chrono::days(gap), rest, lateCharges(rest, *delay + gap)));
  }
  return payments;
}

std::string_view situation(Invoice const& invoice, std::int64_t principalPaid, Day today) {
  if (invoice.cancelled) {
    return "cancelada";
  }
  if (invoice.net() == 0) {
    return "isenta";
  }
  if (principalPaid == invoice.net()) {
    return "paga";
  }
  if (principalPaid > 0) {
    return "parcial";
  }
  return invoice.due < today ? "vencida" : "aberta";
}

void writePayments(Context& context, Account const& account, Invoice const& invoice,
                   std::vector<Payment> const& payments) {
  int const unit = account.schoolClass->unit->id;
  for (Payment const& payment : payments) {
    int const id = ++context.payments;
    context.sink.row(
        TableId::kPayments,
        {id, unit, invoice.id, payment.at, Hundredths{payment.principal + payment.charges},
         payment.charges == 0 ? kNull : Cell(Hundredths{payment.charges}), payment.form,
         unitToken(unit) + " " + std::string(payment.form) + " " + padded(id, 9)});
  }
}

void writeInvoice(Context& context, Account const& account, Invoice const& invoice, Moment issued,
                  std::vector<Payment> const& payments) {
  int const unit = account.schoolClass->unit->id;
  std::int64_t principal = 0;
  std::int64_t received = 0;
  for (Payment const& payment : payments) {
    principal += payment.principal;
    received += payment.principal + payment.charges;
  }
  std::string const text = unitToken(unit) + " Mensalidade " + padded(invoice.month, 2) + "/" +
                           std::to_string(account.schoolClass->year);
  context.sink.row(
      TableId::kInvoices,
      {invoice.id, unit, account.enrolment, dayOf(account.schoolClass->year, invoice.month, 1),
       invoice.due, Hundredths{invoice.value},
       invoice.discount == 0 ? kNull : Cell(Hundredths{invoice.discount}), Hundredths{received},
       situation(invoice, principal, context.calendar.today()), issued, text});
  writePayments(context, account, invoice, payments);
}

}  // namespace

void writeInvoices(Context& context, Account const& account) {
  int const year = account.schoolClass->year;
  Random random(context.settings.seed, Purpose::kPayer, static_cast<std::uint64_t>(account.student),
                static_cast<std::uint64_t>(year));
  std::int64_t const value = account.schoolClass->monthlyFee.value;
  Moment const now = Moment(context.calendar.today()) + std::chrono::hours(24);
  for (int month = 1; month <= 12; ++month) {
    Day const first = dayOf(year, month, 1);
    Moment const issued = Moment(monthsLater(first, -1)) + std::chrono::hours(19 * 24 + 6) +
                          std::chrono::seconds(account.enrolment % 3600);
    bool const afterExit = account.exit && first > *account.exit;
    bool const firstAfterExit = afterExit && monthsLater(first, -1) <= *account.exit;
    if (issued >= now || (afterExit && !firstAfterExit)) {
      return;
    }
    Invoice const invoice{++context.invoices,
                          month,
                          first + std::chrono::days(account.dueDay - 1),
                          value,
                          value * account.scholarship / 100,
                          afterExit};
    std::vector<Payment> payments = drawPayments(random, invoice, account.paymentHabit);
    std::erase_if(payments, [now](Payment const& payment) { return payment.at >= now; });
    writeInvoice(context, account, invoice, issued, payments);
  }
}

}  // namespace escola
