CREATE TABLE orders(day TEXT, amount TEXT, locale TEXT);
INSERT INTO orders VALUES
  ('21. November 2026', '1.234,50', 'de_DE'),
  ('11/22/2026', '1,234.50', 'en_US'),
  ('23 nov. 2026', '99,5', 'fr_FR'),
  (NULL, '12', 'en_GB');
SELECT vx_parse_date(day, locale), vx_parse_number(amount, locale) FROM orders ORDER BY 1;
SELECT vx_format_date(vx_parse_date(day, locale), 'ja_JP') FROM orders;
SELECT vx_format_number(sum(vx_parse_number(amount, locale)), 'hi_IN', 2) FROM orders;
SELECT vx_parse_date('2026-02-30', 'en_US');
SELECT vx_parse_date('2026-13-05', 'en_US');
SELECT vx_parse_number('12x', 'en_US');
SELECT vx_format_date('21.11.2026', 'en_US');
SELECT vx_format_date('2026-11-21', 'xx_XX');
