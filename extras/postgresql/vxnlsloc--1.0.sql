\echo Use "CREATE EXTENSION vxnlsloc" to load this file. \quit

-- STABLE, not IMMUTABLE: what a locale writes comes from CLDR and may change when ICU is upgraded, and an index or a
-- generated column over it would then be wrong in silence.

CREATE FUNCTION vx_parse_date(value text, locale text, form text DEFAULT 'any') RETURNS date
  AS 'MODULE_PATHNAME' LANGUAGE C STABLE STRICT PARALLEL SAFE COST 50;
COMMENT ON FUNCTION vx_parse_date(text, text, text) IS
  'reads a date; form: any, short, medium, long, or a pattern as %d.%m.%Y';

CREATE FUNCTION vx_format_date(value date, locale text, form text DEFAULT 'short') RETURNS text
  AS 'MODULE_PATHNAME' LANGUAGE C STABLE STRICT PARALLEL SAFE COST 5;
COMMENT ON FUNCTION vx_format_date(date, text, text) IS
  'writes a date of 1582-01-01 to 20000-12-31; form: short, medium, long, or a pattern as %d.%m.%Y';

CREATE FUNCTION vx_parse_number(value text, locale text) RETURNS double precision
  AS 'MODULE_PATHNAME' LANGUAGE C STABLE STRICT PARALLEL SAFE COST 5;
COMMENT ON FUNCTION vx_parse_number(text, text) IS
  'reads a number; a missing value ("._", ".A" to ".Z") is null';

CREATE FUNCTION vx_format_number(value double precision, locale text) RETURNS text
  AS 'MODULE_PATHNAME' LANGUAGE C STABLE STRICT PARALLEL SAFE COST 5;
COMMENT ON FUNCTION vx_format_number(double precision, text) IS
  'writes a number with at most 15 significant digits; NaN is "."';

CREATE FUNCTION vx_format_number(value double precision, locale text, decimals integer) RETURNS text
  AS 'MODULE_PATHNAME' LANGUAGE C STABLE STRICT PARALLEL SAFE COST 5;
COMMENT ON FUNCTION vx_format_number(double precision, text, integer) IS
  'writes a number with this many decimals, 0 to 98; NaN is "."';

CREATE FUNCTION vx_versions() RETURNS text
  AS 'MODULE_PATHNAME' LANGUAGE C STABLE STRICT PARALLEL SAFE;
COMMENT ON FUNCTION vx_versions() IS
  'the versions of the locale data: ICU, CLDR, Unicode, tz';
