-- SPDX-License-Identifier: Apache-2.0

-- The inventories of many servers with their history, for PostgreSQL 15 or later: `zebdb-fleet init` or
-- `psql -X -v ON_ERROR_STOP=1 -f schema.sql`. What is there already stays; docs/fleet.md explains what is in it.

BEGIN;
SET LOCAL client_min_messages = warning;
DO $$ BEGIN PERFORM pg_advisory_xact_lock(hashtextextended('fleet schema', 0)); END $$;

CREATE SCHEMA IF NOT EXISTS fleet;

CREATE TABLE IF NOT EXISTS fleet.version (
    number integer PRIMARY KEY CHECK (number >= 1),
    since timestamptz NOT NULL DEFAULT now()
);
COMMENT ON TABLE fleet.version IS 'the version of this schema; the highest number counts';

DO $$
DECLARE
    ours CONSTANT integer := 1;
    found CONSTANT integer := (SELECT max(number) FROM fleet.version);
BEGIN
    IF current_setting('server_version_num')::integer < 150000 THEN
        RAISE EXCEPTION 'PostgreSQL 15 or later is needed, and this is %', current_setting('server_version');
    END IF;
    IF found > ours THEN
        RAISE EXCEPTION 'the schema fleet has version %, and this zebdb-fleet knows version % at most', found, ours
            USING HINT = 'Use a zebdb-fleet that is at least as new as the one that made the schema.';
    END IF;
    IF current_setting('server_encoding') <> 'UTF8' THEN
        RAISE EXCEPTION 'the database has the encoding %, and texts of servers need UTF8', current_setting('server_encoding')
            USING HINT = 'Create one with: createdb --encoding=UTF8 --template=template0 NAME';
    END IF;
    INSERT INTO fleet.version (number) VALUES (ours) ON CONFLICT DO NOTHING;
END
$$;

CREATE EXTENSION IF NOT EXISTS btree_gist;

CREATE TABLE IF NOT EXISTS fleet.identity (fleet uuid PRIMARY KEY);
COMMENT ON TABLE fleet.identity IS 'the one name of this fleet among others';
INSERT INTO fleet.identity SELECT gen_random_uuid() WHERE NOT EXISTS (SELECT FROM fleet.identity);

CREATE TABLE IF NOT EXISTS fleet.tenant (partition integer PRIMARY KEY, fleet uuid NOT NULL);
COMMENT ON TABLE fleet.tenant IS 'which partitions are kept here for another fleet';

CREATE TABLE IF NOT EXISTS fleet.leftover (partition integer, machine name, PRIMARY KEY (partition, machine));
COMMENT ON TABLE fleet.leftover IS 'partitions that have moved from a machine that still has their rows';

------------------------------------------------------------------------------------------------------------------------
-- Texts
------------------------------------------------------------------------------------------------------------------------

-- What one firmware pads with blanks, another does not.
CREATE OR REPLACE FUNCTION fleet.trimmed(value text) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
    SELECT btrim(value, E' \t\n\x0B\f\r')
$$;

CREATE OR REPLACE FUNCTION fleet.hexadecimal(number bigint, digits integer) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
    SELECT coalesce(lpad(to_hex(number), greatest(digits, length(to_hex(number))), '0'), '-')
$$;

-- As a JSON string, without what could steer a terminal or turn the direction of writing.
CREATE OR REPLACE FUNCTION fleet.printable(value text) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
    SELECT regexp_replace(to_json(value)::text,
                          E'[\u007F-\u009F\u061C\u200E\u200F\u2028-\u202E\u2066-\u2069]', '?', 'g')
$$;

-- As in `zebdb-cds tree`: 0000:3b:00.0.
CREATE OR REPLACE FUNCTION fleet.pci_address(segment bigint, bus bigint, device bigint, function bigint) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
    SELECT fleet.hexadecimal(segment, 4) || ':' || fleet.hexadecimal(bus, 2) || ':' || fleet.hexadecimal(device, 2)
           || '.' || fleet.hexadecimal(function, 1)
$$;

-- The n-th part of a place, as others refer to it.
CREATE OR REPLACE FUNCTION fleet.numbered_place(place text, ordinal integer) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
    SELECT CASE WHEN ordinal > 1 THEN place || '~' || ordinal ELSE place END
$$;

-- A serial number without the blanks around it; null for what firmware writes where it knows none.
CREATE OR REPLACE FUNCTION fleet.real_serial(serial text) RETURNS text
LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
DECLARE
    -- ASCII in lower case and without punctuation, which firmware adds and drops freely.
    core text := translate(serial,
        'ABCDEFGHIJKLMNOPQRSTUVWXYZ'
            || E'\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1A\x1B'
            || E'\x1C\x1D\x1E\x1F !"#$%&''()*+,-./:;<=>?@[\\]^_`{|}~\x7F',
        'abcdefghijklmnopqrstuvwxyz');
BEGIN
    IF left(core, 2) = '0x' THEN
        core := substr(core, 3);
    END IF;
    IF core ~ E'^([0-9a-z]?)\\1*$' OR core IN (
        '0123456789', '123456789', '1234567890', '12345678', 'defaultstring', 'dimmmissing', 'empty', 'fillbyoem',
        'invalid', 'modulemissing', 'na', 'no', 'noasset', 'nocpu', 'nodimm', 'nomodule', 'none', 'noserial',
        'noserialnumber', 'notapplicable', 'notavailable', 'notinstalled', 'notpresent', 'notprovided', 'notset',
        'notspecified', 'null', 'outofspec', 'serialnumber', 'systemserialnumber', 'tobefilledbyoem', 'undefined',
        'unknown', 'unspecified') THEN
        RETURN NULL;
    END IF;
    RETURN fleet.trimmed(serial);
END
$$;

-- Whether a record says that nothing is in its place.
CREATE OR REPLACE FUNCTION fleet.is_empty(kind text, raw jsonb) RETURNS boolean
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
    SELECT CASE kind WHEN 'memory' THEN coalesce((raw ->> 'MemSize')::bigint = 0, false)
                     WHEN 'processor' THEN coalesce((raw ->> 'Status')::bigint & 64 = 0, false)
                     ELSE false END
$$;

-- What a part is, in a few words.
CREATE OR REPLACE FUNCTION fleet.described(kind text, raw jsonb) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
    SELECT CASE kind
        WHEN 'processor' THEN fleet.trimmed(raw ->> 'Version')
        WHEN 'memory' THEN concat_ws(' ', raw ->> 'MemSize' || ' MiB', fleet.trimmed(raw ->> 'Manufacturer'))
        WHEN 'bridge' THEN fleet.hexadecimal((raw ->> 'VendorId')::bigint, 4) || ':'
                           || fleet.hexadecimal((raw ->> 'DevId')::bigint, 4)
        WHEN 'device' THEN fleet.hexadecimal((raw ->> 'VendorId')::bigint, 4) || ':'
                           || fleet.hexadecimal((raw ->> 'DeviceId')::bigint, 4) END
$$;

------------------------------------------------------------------------------------------------------------------------
-- Tables
------------------------------------------------------------------------------------------------------------------------

CREATE TABLE IF NOT EXISTS fleet.server (
    server text NOT NULL,
    first_seen timestamptz NOT NULL,
    last_seen timestamptz NOT NULL
) PARTITION BY HASH (server);
COMMENT ON TABLE fleet.server IS 'every server of which there is an observation';

CREATE TABLE IF NOT EXISTS fleet.observation (
    server text NOT NULL,
    observed_at timestamptz NOT NULL,
    last_seen timestamptz NOT NULL,
    seen timestamptz[] NOT NULL,
    status text NOT NULL CHECK (status IN ('loaded', 'refused', 'aside')),
    reason text,
    source_name text NOT NULL,
    bytes bigint,
    sha256 text,
    components bigint NOT NULL,
    left_out jsonb NOT NULL
) PARTITION BY HASH (server);
COMMENT ON TABLE fleet.observation IS 'what was observed of a server; loaded: one row for all in a row of the same SHA-256';
COMMENT ON COLUMN fleet.observation.seen IS 'every time at which it was observed, from observed_at to last_seen';
COMMENT ON COLUMN fleet.observation.reason IS 'why it was refused or set aside';

-- A row is a version of a part: what it was in an unbroken row of observations. The columns that are generated from
-- `raw` are for questions; `raw` is what the file had, but for what it had not and for the numbers of rows.
CREATE TABLE IF NOT EXISTS fleet.processor (
    server text NOT NULL,
    place text NOT NULL,
    ordinal integer NOT NULL,
    valid tstzrange NOT NULL,
    ended text CHECK (ended IN ('changed', 'moved', 'removed', 'emptied')),
    behind text,
    raw jsonb NOT NULL,
    node_index bigint GENERATED ALWAYS AS ((raw ->> 'NodeIndex')::bigint) STORED,
    socket text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'Socket')) STORED,
    processor_type bigint GENERATED ALWAYS AS ((raw ->> 'ProcType')::bigint) STORED,
    family bigint GENERATED ALWAYS AS ((raw ->> 'Family')::bigint) STORED,
    manufacturer text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'Manufacturer')) STORED,
    processor_id numeric(20) GENERATED ALWAYS AS ((raw ->> 'ProcId')::numeric(20)) STORED,
    model text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'Version')) STORED,
    max_speed bigint GENERATED ALWAYS AS ((raw ->> 'MaxSpeed')::bigint) STORED,
    speed bigint GENERATED ALWAYS AS ((raw ->> 'CurSpeed')::bigint) STORED,
    status bigint GENERATED ALWAYS AS ((raw ->> 'Status')::bigint) STORED,
    serial_no text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'SerialNo')) STORED,
    real_serial text GENERATED ALWAYS AS (fleet.real_serial(raw ->> 'SerialNo')) STORED,
    asset_tag text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'AssetTag')) STORED,
    part_no text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'PartNo')) STORED,
    cores bigint GENERATED ALWAYS AS ((raw ->> 'CoreCount')::bigint) STORED,
    cores_enabled bigint GENERATED ALWAYS AS ((raw ->> 'CoreEnabled')::bigint) STORED,
    threads bigint GENERATED ALWAYS AS ((raw ->> 'ThreadCount')::bigint) STORED,
    l1_cache_kib bigint GENERATED ALWAYS AS ((raw ->> 'L1CacheInstalled')::bigint) STORED,
    l2_cache_kib bigint GENERATED ALWAYS AS ((raw ->> 'L2CacheInstalled')::bigint) STORED,
    l3_cache_kib bigint GENERATED ALWAYS AS ((raw ->> 'L3CacheInstalled')::bigint) STORED,
    is_empty boolean GENERATED ALWAYS AS (fleet.is_empty('processor', raw)) STORED,
    CHECK ((ended IS NULL) = upper_inf(valid))
) PARTITION BY HASH (server);

CREATE TABLE IF NOT EXISTS fleet.memory (
    server text NOT NULL,
    place text NOT NULL,
    ordinal integer NOT NULL,
    valid tstzrange NOT NULL,
    ended text CHECK (ended IN ('changed', 'moved', 'removed', 'emptied')),
    lost_mib bigint CHECK (lost_mib > 0),
    behind text,
    raw jsonb NOT NULL,
    node_index bigint GENERATED ALWAYS AS ((raw ->> 'NodeIndex')::bigint) STORED,
    slot_no bigint GENERATED ALWAYS AS ((raw ->> 'SlotNo')::bigint) STORED,
    total_width bigint GENERATED ALWAYS AS ((raw ->> 'TotalWidth')::bigint) STORED,
    data_width bigint GENERATED ALWAYS AS ((raw ->> 'DataWidth')::bigint) STORED,
    size_mib bigint GENERATED ALWAYS AS ((raw ->> 'MemSize')::bigint) STORED,
    form_factor bigint GENERATED ALWAYS AS ((raw ->> 'FormFactor')::bigint) STORED,
    locator text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'DevLocator')) STORED,
    bank_locator text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'BankLocator')) STORED,
    memory_type bigint GENERATED ALWAYS AS ((raw ->> 'MemType')::bigint) STORED,
    type_detail bigint GENERATED ALWAYS AS ((raw ->> 'TypeDetail')::bigint) STORED,
    max_speed bigint GENERATED ALWAYS AS ((raw ->> 'MaxSpeed')::bigint) STORED,
    speed bigint GENERATED ALWAYS AS ((raw ->> 'ClockSpeed')::bigint) STORED,
    manufacturer text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'Manufacturer')) STORED,
    serial_no text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'SerialNo')) STORED,
    real_serial text GENERATED ALWAYS AS (fleet.real_serial(raw ->> 'SerialNo')) STORED,
    asset_tag text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'AssetTag')) STORED,
    part_no text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'PartNo')) STORED,
    capacity numeric(20) GENERATED ALWAYS AS ((raw ->> 'Capacity')::numeric(20)) STORED,
    volatile_capacity numeric(20) GENERATED ALWAYS AS ((raw ->> 'MemCapacity')::numeric(20)) STORED,
    app_direct_capacity numeric(20) GENERATED ALWAYS AS ((raw ->> 'AppDirCap')::numeric(20)) STORED,
    firmware_version text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'FirmwareVersion')) STORED,
    is_empty boolean GENERATED ALWAYS AS (fleet.is_empty('memory', raw)) STORED,
    CHECK ((ended IS NULL) = upper_inf(valid))
) PARTITION BY HASH (server);
COMMENT ON COLUMN fleet.memory.lost_mib IS 'how much smaller is what came after this version; null where it is not';

CREATE TABLE IF NOT EXISTS fleet.bridge (
    server text NOT NULL,
    place text NOT NULL,
    ordinal integer NOT NULL,
    valid tstzrange NOT NULL,
    ended text CHECK (ended IN ('changed', 'moved', 'removed')),
    behind text,
    raw jsonb NOT NULL,
    node_index bigint GENERATED ALWAYS AS ((raw ->> 'NodeIndex')::bigint) STORED,
    vendor_id bigint GENERATED ALWAYS AS ((raw ->> 'VendorId')::bigint) STORED,
    device_id bigint GENERATED ALWAYS AS ((raw ->> 'DevId')::bigint) STORED,
    revision bigint GENERATED ALWAYS AS ((raw ->> 'RevId')::bigint) STORED,
    class_code bigint GENERATED ALWAYS AS ((raw ->> 'ClsCode')::bigint) STORED,
    primary_bus bigint GENERATED ALWAYS AS ((raw ->> 'PriBusNo')::bigint) STORED,
    secondary_bus bigint GENERATED ALWAYS AS ((raw ->> 'SndBusNo')::bigint) STORED,
    subordinate_bus bigint GENERATED ALWAYS AS ((raw ->> 'SubBusNo')::bigint) STORED,
    CHECK ((ended IS NULL) = upper_inf(valid))
) PARTITION BY HASH (server);

CREATE TABLE IF NOT EXISTS fleet.device (
    server text NOT NULL,
    place text NOT NULL,
    ordinal integer NOT NULL,
    valid tstzrange NOT NULL,
    ended text CHECK (ended IN ('changed', 'moved', 'removed')),
    behind text,
    raw jsonb NOT NULL,
    node_index bigint GENERATED ALWAYS AS ((raw ->> 'NodeIndex')::bigint) STORED,
    slot_no bigint GENERATED ALWAYS AS ((raw ->> 'SlotNo')::bigint) STORED,
    location bigint GENERATED ALWAYS AS ((raw ->> 'Location')::bigint) STORED,
    vendor_id bigint GENERATED ALWAYS AS ((raw ->> 'VendorId')::bigint) STORED,
    device_id bigint GENERATED ALWAYS AS ((raw ->> 'DeviceId')::bigint) STORED,
    subsystem_vendor_id bigint GENERATED ALWAYS AS ((raw ->> 'SubVendorId')::bigint) STORED,
    subsystem_device_id bigint GENERATED ALWAYS AS ((raw ->> 'SubDeviceId')::bigint) STORED,
    revision bigint GENERATED ALWAYS AS ((raw ->> 'RevId')::bigint) STORED,
    class_code bigint GENERATED ALWAYS AS ((raw ->> 'ClsCode')::bigint) STORED,
    slot_designation text GENERATED ALWAYS AS (fleet.trimmed(raw ->> 'SlotDesignation')) STORED,
    slot_type bigint GENERATED ALWAYS AS ((raw ->> 'SlotType')::bigint) STORED,
    lanes bigint GENERATED ALWAYS AS ((raw ->> 'LanesInUse')::bigint) STORED,
    max_lanes bigint GENERATED ALWAYS AS ((raw ->> 'MaxLanes')::bigint) STORED,
    link_speed bigint GENERATED ALWAYS AS ((raw ->> 'PCIeType')::bigint) STORED,
    max_link_speed bigint GENERATED ALWAYS AS ((raw ->> 'MaxPCIeType')::bigint) STORED,
    function_type bigint GENERATED ALWAYS AS ((raw ->> 'FunType')::bigint) STORED,
    CHECK ((ended IS NULL) = upper_inf(valid))
) PARTITION BY HASH (server);

CREATE OR REPLACE FUNCTION fleet.add_keys(name text, partition regclass) RETURNS void
LANGUAGE plpgsql AS $$
BEGIN
    IF name = 'server' THEN
        EXECUTE format('ALTER TABLE %s ADD PRIMARY KEY (server)', partition);
    ELSIF name = 'observation' THEN
        EXECUTE format('ALTER TABLE %s ADD UNIQUE NULLS NOT DISTINCT (server, observed_at, status, sha256)', partition);
    ELSE
        EXECUTE format('ALTER TABLE %s ADD EXCLUDE USING gist '
                       '(server WITH =, place WITH =, ordinal WITH =, valid WITH &&)', partition);
        EXECUTE format('CREATE UNIQUE INDEX ON %s (server, place, ordinal) WHERE ended IS NULL', partition);
    END IF;
END
$$;

-- The partitions of one number stand on one machine. Keys and constraints are theirs, for a table of which a partition
-- is on another machine can have none.
DO $$
DECLARE
    name text;
    partition text;
BEGIN
    FOREACH name IN ARRAY '{server,observation,processor,memory,bridge,device}'::text[] LOOP
        FOR number IN 0..15 LOOP
            partition := format('%s_p%s', name, lpad(number::text, 2, '0'));
            CONTINUE WHEN to_regclass('fleet.' || partition) IS NOT NULL;
            EXECUTE format('CREATE TABLE fleet.%I PARTITION OF fleet.%I FOR VALUES WITH (MODULUS 16, REMAINDER %s)',
                           partition, name, number);
            PERFORM fleet.add_keys(name, format('fleet.%I', partition));
        END LOOP;
    END LOOP;
END
$$;

CREATE INDEX IF NOT EXISTS server_last_seen ON fleet.server (last_seen);
CREATE INDEX IF NOT EXISTS processor_part_no ON fleet.processor (part_no) WHERE ended IS NULL;
CREATE INDEX IF NOT EXISTS memory_part_no ON fleet.memory (part_no) WHERE ended IS NULL;
CREATE INDEX IF NOT EXISTS processor_serial_no ON fleet.processor (serial_no, server);
CREATE INDEX IF NOT EXISTS memory_serial_no ON fleet.memory (serial_no, server);
CREATE INDEX IF NOT EXISTS processor_lost ON fleet.processor (upper(valid)) WHERE ended IN ('removed', 'emptied');
CREATE INDEX IF NOT EXISTS memory_lost ON fleet.memory (upper(valid)) WHERE ended IN ('removed', 'emptied');
CREATE INDEX IF NOT EXISTS bridge_lost ON fleet.bridge (upper(valid)) WHERE ended IN ('removed', 'emptied');
CREATE INDEX IF NOT EXISTS device_lost ON fleet.device (upper(valid)) WHERE ended IN ('removed', 'emptied');
CREATE INDEX IF NOT EXISTS memory_lost_mib ON fleet.memory (upper(valid)) WHERE lost_mib > 0;

-- The parts of all kinds, with what they have in common.
CREATE OR REPLACE VIEW fleet.part_version AS
    SELECT 'processor' AS kind, server, place, ordinal, valid, ended, behind, serial_no, real_serial, is_empty, raw
    FROM fleet.processor
    UNION ALL
    SELECT 'memory', server, place, ordinal, valid, ended, behind, serial_no, real_serial, is_empty, raw
    FROM fleet.memory
    UNION ALL
    SELECT 'bridge', server, place, ordinal, valid, ended, behind, NULL, NULL, false, raw
    FROM fleet.bridge
    UNION ALL
    SELECT 'device', server, place, ordinal, valid, ended, behind, NULL, NULL, false, raw
    FROM fleet.device;

------------------------------------------------------------------------------------------------------------------------
-- From one state of a server to the next
------------------------------------------------------------------------------------------------------------------------

DO $$
BEGIN
    IF to_regtype('fleet.part_state') IS NULL THEN
        CREATE TYPE fleet.part_state AS (kind text, place text, ordinal integer, behind text, raw jsonb);
        CREATE TYPE fleet.server_state AS (since timestamptz, parts fleet.part_state[]);
        CREATE TYPE fleet.known_part AS (is_old boolean, part fleet.part_state, signs jsonb[]);
        CREATE TYPE fleet.pair AS (old_id bigint, new_id bigint, sign integer);
        CREATE TYPE fleet.part_end AS (kind text, place text, ordinal integer, ended text, lost_mib bigint);
    END IF;
END
$$;

-- The parts that an observation describes.
CREATE OR REPLACE FUNCTION fleet.observed_parts(observation jsonb) RETURNS fleet.part_state[]
LANGUAGE plpgsql IMMUTABLE SET plan_cache_mode = force_generic_plan AS $$
BEGIN
    RETURN (
        WITH record AS (
            SELECT 'processor' AS kind, row, line, coalesce(fleet.trimmed(row ->> 'Socket'), '') AS place
            FROM jsonb_array_elements(observation -> 'processors') WITH ORDINALITY AS processor (row, line)
            UNION ALL
            SELECT 'memory', row, line, coalesce(fleet.trimmed(row ->> 'DevLocator'), '')
            FROM jsonb_array_elements(observation -> 'memory') WITH ORDINALITY AS memory (row, line)
            UNION ALL
            SELECT 'bridge', row, line, fleet.pci_address((row ->> 'SegNo')::bigint, (row ->> 'BusNo')::bigint,
                                                          (row ->> 'DevNo')::bigint, (row ->> 'FunNo')::bigint)
            FROM jsonb_array_elements(observation -> 'bridges') WITH ORDINALITY AS bridge (row, line)
            UNION ALL
            SELECT 'device', row, line, fleet.pci_address((row ->> 'SegNo')::bigint, (row ->> 'BusNo')::bigint,
                                                          (row ->> 'DeviceNo')::bigint, (row ->> 'FunctionNo')::bigint)
            FROM jsonb_array_elements(observation -> 'devices') WITH ORDINALITY AS device (row, line)
        ), part AS (
            SELECT kind, row, place, (row_number() OVER (PARTITION BY kind, place ORDER BY line))::integer AS ordinal
            FROM record
        ), bridge AS (
            SELECT row -> 'Id' AS id, fleet.numbered_place(place, ordinal) AS place
            FROM part
            WHERE kind = 'bridge'
        )
        SELECT coalesce(array_agg((part.kind, part.place, part.ordinal, bridge.place,
                                   jsonb_strip_nulls(row - '{Id,ParentId,BridgeId,ArrayId}'::text[]))::fleet.part_state),
                        '{}')
        FROM part
        LEFT JOIN bridge ON bridge.id = coalesce(row -> 'ParentId', row -> 'BridgeId', row -> 'ArrayId')
    );
END
$$;

-- By what each part of the places of `gone` and `come` can be recognised, the surest sign first: where it sits, with its
-- serial number; a serial number that is unique in both states; all that is known of it; where it sits; its address,
-- where only the index of the node is another. A server that has another index as a whole is compared without it.
CREATE OR REPLACE FUNCTION fleet.known_parts(old_state fleet.part_state[], new_state fleet.part_state[],
                                             gone fleet.part_state[], come fleet.part_state[]) RETURNS fleet.known_part[]
LANGUAGE plpgsql IMMUTABLE SET plan_cache_mode = force_generic_plan AS $$
DECLARE
    old_nodes CONSTANT text[] := (SELECT array_agg(DISTINCT coalesce(raw ->> 'NodeIndex', '')) FROM unnest(old_state));
    new_nodes CONSTANT text[] := (SELECT array_agg(DISTINCT coalesce(raw ->> 'NodeIndex', '')) FROM unnest(new_state));
    is_renumbered CONSTANT boolean := cardinality(old_nodes) = 1 AND cardinality(new_nodes) = 1 AND old_nodes <> new_nodes;
BEGIN
    RETURN (
        WITH state AS (
            SELECT true AS is_old, part, part.kind, part.place, part.raw,
                   fleet.real_serial(part.raw ->> 'SerialNo') AS serial
            FROM unnest(old_state) AS part
            UNION ALL
            SELECT false, part, part.kind, part.place, part.raw, fleet.real_serial(part.raw ->> 'SerialNo')
            FROM unnest(new_state) AS part
        ), unique_serial AS (
            SELECT kind, serial
            FROM state
            WHERE serial IS NOT NULL
            GROUP BY kind, serial
            HAVING count(*) FILTER (WHERE is_old) = 1 AND count(*) FILTER (WHERE NOT is_old) = 1
        ), described AS (
            SELECT is_old, part, serial, unique_serial.serial IS NOT NULL AS is_unique,
                   CASE WHEN NOT is_renumbered THEN raw
                        WHEN kind = 'device' THEN raw - 'NodeIndex' || jsonb_build_object(
                            'DevKey', (raw ->> 'DevKey')::bigint & x'FFFFFF'::bigint)  -- which has the index, too
                        ELSE raw - 'NodeIndex' END AS whole,
                   CASE kind WHEN 'processor' THEN jsonb_build_array(fleet.trimmed(raw ->> 'Socket'))
                             WHEN 'memory' THEN jsonb_build_array(fleet.trimmed(raw ->> 'DevLocator'),
                                                                  fleet.trimmed(raw ->> 'BankLocator'))
                             WHEN 'bridge' THEN jsonb_build_array(place)
                             WHEN 'device' THEN jsonb_build_array(raw -> 'FunKey') END AS seat,
                   CASE WHEN is_renumbered THEN 'null' ELSE coalesce(raw -> 'NodeIndex', 'null') END AS node
            FROM state
            LEFT JOIN unique_serial USING (kind, serial)
            WHERE (kind, place) IN (SELECT kind, place FROM unnest(gone) UNION ALL SELECT kind, place FROM unnest(come))
        )
        SELECT array_agg((is_old, part, ARRAY[
                   CASE WHEN serial IS NOT NULL THEN jsonb_build_array(node, seat, serial) END,
                   CASE WHEN is_unique THEN to_jsonb(serial) END,
                   jsonb_build_array(whole, split_part((part).behind, '~', 1)),
                   jsonb_build_array(node, seat),
                   CASE WHEN (part).kind IN ('bridge', 'device') THEN seat END])::fleet.known_part)
        FROM described
    );
END
$$;

-- Which part of the old state is which of the new one, each recognised by the first sign that finds it a partner.
CREATE OR REPLACE FUNCTION fleet.matched(parts fleet.known_part[]) RETURNS fleet.pair[]
LANGUAGE plpgsql IMMUTABLE SET plan_cache_mode = force_generic_plan AS $$
DECLARE
    pairs fleet.pair[] := '{}';
BEGIN
    FOR number IN 1..5 LOOP
        pairs := pairs || (
            WITH remaining AS (
                SELECT id, is_old, (part).kind, signs[number] AS sign,
                       row_number() OVER (PARTITION BY is_old, (part).kind, signs[number]
                                          ORDER BY (part).place, (part).ordinal) AS turn
                FROM unnest(parts) WITH ORDINALITY AS known (is_old, part, signs, id)
                WHERE signs[number] IS NOT NULL
                  AND id NOT IN (SELECT CASE WHEN is_old THEN old_id ELSE new_id END FROM unnest(pairs))
            )
            SELECT coalesce(array_agg((was.id, now.id, number)::fleet.pair), '{}')
            FROM remaining AS was
            JOIN remaining AS now USING (kind, sign, turn)
            WHERE was.is_old AND NOT now.is_old
        );
    END LOOP;
    RETURN pairs;
END
$$;

-- How the versions `gone` of a state end where a new one follows, in which the versions `come` are new.
CREATE OR REPLACE FUNCTION fleet.part_ends(old_state fleet.part_state[], new_state fleet.part_state[],
                                           gone fleet.part_state[], come fleet.part_state[]) RETURNS fleet.part_end[]
LANGUAGE plpgsql IMMUTABLE SET plan_cache_mode = force_generic_plan AS $$
DECLARE
    serial_number CONSTANT integer := 2;
    parts CONSTANT fleet.known_part[] := fleet.known_parts(old_state, new_state, gone, come);
    pairs CONSTANT fleet.pair[] := fleet.matched(parts);
BEGIN
    RETURN (
        WITH known AS (
            SELECT id, is_old, (part).* FROM unnest(parts) WITH ORDINALITY AS known (is_old, part, signs, id)
        ), was AS (
            SELECT known.* FROM known JOIN unnest(gone) AS version USING (kind, place, ordinal) WHERE is_old
        )
        SELECT array_agg((was.kind, was.place, was.ordinal,
                   CASE WHEN now.id IS NULL THEN 'removed'
                        WHEN pair.sign = serial_number AND (now.place, now.ordinal) <> (was.place, was.ordinal) THEN 'moved'
                        WHEN fleet.is_empty(now.kind, now.raw) AND NOT fleet.is_empty(was.kind, was.raw) THEN 'emptied'
                        WHEN (now.raw, now.behind) IS NOT DISTINCT FROM (was.raw, was.behind) THEN 'moved'
                        ELSE 'changed' END,
                   CASE WHEN was.kind = 'memory' THEN nullif(greatest(
                       coalesce((was.raw ->> 'MemSize')::bigint, 0) - coalesce((now.raw ->> 'MemSize')::bigint, 0), 0), 0) END
               )::fleet.part_end)
        FROM was
        LEFT JOIN unnest(pairs) AS pair ON pair.old_id = was.id
        LEFT JOIN known AS now ON now.id = pair.new_id
    );
END
$$;

CREATE OR REPLACE FUNCTION fleet.state_at(of_server text, moment timestamptz) RETURNS fleet.part_state[]
LANGUAGE plpgsql STABLE SET plan_cache_mode = force_custom_plan AS $$
BEGIN
    RETURN (SELECT coalesce(array_agg((kind, place, ordinal, behind, raw)::fleet.part_state), '{}')
            FROM fleet.part_version
            WHERE server = of_server AND valid @> moment);
END
$$;

CREATE OR REPLACE FUNCTION fleet.current_state(of_server text) RETURNS fleet.part_state[]
LANGUAGE plpgsql STABLE SET plan_cache_mode = force_custom_plan AS $$
BEGIN
    RETURN (SELECT coalesce(array_agg((kind, place, ordinal, behind, raw)::fleet.part_state), '{}')
            FROM fleet.part_version
            WHERE server = of_server AND ended IS NULL);
END
$$;

CREATE OR REPLACE FUNCTION fleet.begin_versions(of_server text, moment timestamptz, come fleet.part_state[]) RETURNS void
LANGUAGE plpgsql SET plan_cache_mode = force_generic_plan AS $$
DECLARE
    since CONSTANT tstzrange := tstzrange(moment, NULL);
BEGIN
    INSERT INTO fleet.processor (server, place, ordinal, valid, raw)
        SELECT of_server, place, ordinal, since, raw FROM unnest(come) WHERE kind = 'processor';
    INSERT INTO fleet.memory (server, place, ordinal, valid, behind, raw)
        SELECT of_server, place, ordinal, since, behind, raw FROM unnest(come) WHERE kind = 'memory';
    INSERT INTO fleet.bridge (server, place, ordinal, valid, behind, raw)
        SELECT of_server, place, ordinal, since, behind, raw FROM unnest(come) WHERE kind = 'bridge';
    INSERT INTO fleet.device (server, place, ordinal, valid, behind, raw)
        SELECT of_server, place, ordinal, since, behind, raw FROM unnest(come) WHERE kind = 'device';
END
$$;

CREATE OR REPLACE FUNCTION fleet.end_versions(of_server text, moment timestamptz, ends fleet.part_end[]) RETURNS void
LANGUAGE plpgsql SET plan_cache_mode = force_custom_plan AS $$
DECLARE
    kinds CONSTANT text[] := (SELECT array_agg(DISTINCT kind) FROM unnest(ends));
BEGIN
    IF 'processor' = ANY (kinds) THEN
        UPDATE fleet.processor AS version SET valid = tstzrange(lower(valid), moment), ended = part.ended
            FROM unnest(ends) AS part
            WHERE part.kind = 'processor' AND server = of_server AND version.ended IS NULL
              AND version.place = part.place AND version.ordinal = part.ordinal;
    END IF;
    IF 'memory' = ANY (kinds) THEN
        UPDATE fleet.memory AS version
            SET valid = tstzrange(lower(valid), moment), ended = part.ended, lost_mib = part.lost_mib
            FROM unnest(ends) AS part
            WHERE part.kind = 'memory' AND server = of_server AND version.ended IS NULL
              AND version.place = part.place AND version.ordinal = part.ordinal;
    END IF;
    IF 'bridge' = ANY (kinds) THEN
        UPDATE fleet.bridge AS version SET valid = tstzrange(lower(valid), moment), ended = part.ended
            FROM unnest(ends) AS part
            WHERE part.kind = 'bridge' AND server = of_server AND version.ended IS NULL
              AND version.place = part.place AND version.ordinal = part.ordinal;
    END IF;
    IF 'device' = ANY (kinds) THEN
        UPDATE fleet.device AS version SET valid = tstzrange(lower(valid), moment), ended = part.ended
            FROM unnest(ends) AS part
            WHERE part.kind = 'device' AND server = of_server AND version.ended IS NULL
              AND version.place = part.place AND version.ordinal = part.ordinal;
    END IF;
END
$$;

-- Makes `new_state` the current state of a server from `moment` on, which is later than all that is known of it.
CREATE OR REPLACE FUNCTION fleet.advance(of_server text, moment timestamptz, new_state fleet.part_state[]) RETURNS void
LANGUAGE plpgsql SET plan_cache_mode = force_generic_plan AS $$
DECLARE
    old_state CONSTANT fleet.part_state[] := fleet.current_state(of_server);
    gone fleet.part_state[];
    come fleet.part_state[];
BEGIN
    SELECT array_agg(was) FILTER (WHERE was.kind IS NOT NULL), array_agg(now) FILTER (WHERE now.kind IS NOT NULL)
        INTO gone, come
        FROM unnest(old_state) AS was
        FULL JOIN unnest(new_state) AS now USING (kind, place, ordinal)
        WHERE (was.raw, was.behind) IS DISTINCT FROM (now.raw, now.behind);
    IF gone IS NOT NULL THEN
        PERFORM fleet.end_versions(of_server, moment, fleet.part_ends(old_state, new_state, gone, come));
    END IF;
    PERFORM fleet.begin_versions(of_server, moment, come);
END
$$;

-- Forgets what a server was after `moment`: what it was then is open again.
CREATE OR REPLACE FUNCTION fleet.rewind(of_server text, moment timestamptz) RETURNS void
LANGUAGE plpgsql SET plan_cache_mode = force_custom_plan AS $$
BEGIN
    DELETE FROM fleet.processor WHERE server = of_server AND lower(valid) > moment;
    DELETE FROM fleet.memory WHERE server = of_server AND lower(valid) > moment;
    DELETE FROM fleet.bridge WHERE server = of_server AND lower(valid) > moment;
    DELETE FROM fleet.device WHERE server = of_server AND lower(valid) > moment;
    UPDATE fleet.processor SET valid = tstzrange(lower(valid), NULL), ended = NULL
        WHERE server = of_server AND upper(valid) > moment;
    UPDATE fleet.memory SET valid = tstzrange(lower(valid), NULL), ended = NULL, lost_mib = NULL
        WHERE server = of_server AND upper(valid) > moment;
    UPDATE fleet.bridge SET valid = tstzrange(lower(valid), NULL), ended = NULL
        WHERE server = of_server AND upper(valid) > moment;
    UPDATE fleet.device SET valid = tstzrange(lower(valid), NULL), ended = NULL
        WHERE server = of_server AND upper(valid) > moment;
END
$$;

------------------------------------------------------------------------------------------------------------------------
-- Observations
------------------------------------------------------------------------------------------------------------------------

-- An observation without its parts, as a row. What is no observation is refused with a message.
CREATE OR REPLACE FUNCTION fleet.observation_row(observation jsonb) RETURNS fleet.observation
LANGUAGE plpgsql STABLE AS $$
DECLARE
    time_form CONSTANT text := '^[0-9]{4}(-[0-9]{2}){2}[Tt ][0-9]{2}(:[0-9]{2}){2}([.][0-9]+)?([Zz]|[+-][0-9]{2}:[0-9]{2})$';
    whole_number CONSTANT text := '^[0-9]{1,18}$';
    wrong text;
    result fleet.observation;
BEGIN
    IF coalesce(jsonb_typeof(observation), 'null') <> 'object' THEN
        RAISE EXCEPTION 'an observation is a JSON object, and this is %', coalesce(jsonb_typeof(observation), 'null')
            USING ERRCODE = 'invalid_parameter_value';
    END IF;
    IF observation -> 'schema' IS DISTINCT FROM '1' THEN
        RAISE EXCEPTION 'an observation of schema 1 is expected, and this is of schema %',
            coalesce(observation ->> 'schema', 'none')
            USING ERRCODE = 'invalid_parameter_value', HINT = 'zebdb-cds export and the schema fleet have to fit together.';
    END IF;
    SELECT format('"%s" has to be %s, and is %s', key, replace(types, '|', ' or '), actual) INTO wrong
        FROM (VALUES ('server', 'string'), ('observed_at', 'string'), ('source', 'object'), ('status', 'string'),
                     ('reason', 'string|null'), ('components', 'number'), ('processors', 'array'), ('memory', 'array'),
                     ('bridges', 'array'), ('devices', 'array'), ('left_out', 'array')) AS expected (key, types),
             LATERAL (SELECT coalesce(jsonb_typeof(observation -> key), 'missing') AS actual) AS type
        WHERE actual <> ALL (string_to_array(types, '|'))
        LIMIT 1;
    IF wrong IS NULL THEN
        wrong := CASE
            WHEN observation ->> 'server' = '' THEN '"server" is empty'
            WHEN observation ->> 'observed_at' !~ time_form
                THEN format('"observed_at" has to be a time as 2026-11-22T19:00:00Z, and is "%s"', observation ->> 'observed_at')
            WHEN observation ->> 'status' NOT IN ('loaded', 'refused')
                THEN format('"status" has to be loaded or refused, and is "%s"', observation ->> 'status')
            WHEN coalesce(jsonb_typeof(observation #> '{source,name}'), 'missing') <> 'string'
                THEN '"name" of "source" has to be string'
            WHEN observation ->> 'status' = 'loaded' AND coalesce(observation #>> '{source,sha256}', '') !~ '^[0-9a-f]{64}$'
                THEN '"sha256" of "source" has to be 64 hexadecimal digits'
            WHEN observation ->> 'components' !~ whole_number
                 OR coalesce(observation #>> '{source,bytes}', '0') !~ whole_number
                THEN '"components" and "bytes" of "source" have to be whole numbers'
            WHEN EXISTS (SELECT FROM jsonb_array_elements((observation -> 'processors') || (observation -> 'memory')
                                                          || (observation -> 'bridges') || (observation -> 'devices')) AS row
                         WHERE jsonb_typeof(row) <> 'object')
                THEN '"processors", "memory", "bridges" and "devices" have to be lists of objects'
        END;
    END IF;
    IF wrong IS NOT NULL THEN
        RAISE EXCEPTION 'this is no observation: %', wrong USING ERRCODE = 'invalid_parameter_value';
    END IF;
    result.server := observation ->> 'server';
    result.observed_at := observation ->> 'observed_at';
    result.last_seen := result.observed_at;
    result.seen := ARRAY[result.observed_at];
    result.status := observation ->> 'status';
    result.reason := observation ->> 'reason';
    result.source_name := observation #>> '{source,name}';
    result.bytes := observation #>> '{source,bytes}';
    result.sha256 := observation #>> '{source,sha256}';
    result.components := observation ->> 'components';
    result.left_out := observation -> 'left_out';
    RETURN result;
END
$$;

CREATE OR REPLACE FUNCTION fleet.note_server(of_server text, moment timestamptz) RETURNS void
LANGUAGE plpgsql SET plan_cache_mode = force_custom_plan AS $$
BEGIN
    UPDATE fleet.server SET first_seen = least(first_seen, moment), last_seen = greatest(last_seen, moment)
        WHERE server = of_server AND moment NOT BETWEEN first_seen AND last_seen;
    IF NOT FOUND AND NOT EXISTS (SELECT FROM fleet.server WHERE server = of_server) THEN
        INSERT INTO fleet.server (server, first_seen, last_seen) VALUES (of_server, moment, moment);
    END IF;
END
$$;

-- Keeps an observation that says nothing of parts; once, however often it comes.
CREATE OR REPLACE FUNCTION fleet.note_observation(observation fleet.observation) RETURNS void
LANGUAGE plpgsql SET plan_cache_mode = force_custom_plan AS $$
BEGIN
    IF NOT EXISTS (SELECT FROM fleet.observation AS known
                   WHERE known.server = observation.server AND known.observed_at = observation.observed_at
                     AND known.status = observation.status AND known.sha256 IS NOT DISTINCT FROM observation.sha256) THEN
        INSERT INTO fleet.observation SELECT observation.*;
    END IF;
END
$$;

-- Puts the state of a server at the time of an observation into its history. `before` is the run of observations in
-- which it falls, if it does: that one ends and begins again behind it.
CREATE OR REPLACE FUNCTION fleet.insert_into_history(observation fleet.observation, before fleet.observation,
                                                     new_state fleet.part_state[]) RETURNS void
LANGUAGE plpgsql SET plan_cache_mode = force_custom_plan AS $$
DECLARE
    seen_before timestamptz[];
    seen_after timestamptz[];
    later fleet.server_state[];
    state fleet.server_state;
BEGIN
    IF before.last_seen > observation.observed_at THEN
        SELECT array_agg(time ORDER BY time) FILTER (WHERE time < observation.observed_at),
               array_agg(time ORDER BY time) FILTER (WHERE time > observation.observed_at)
            INTO seen_before, seen_after
            FROM unnest(before.seen) AS time;
        UPDATE fleet.observation AS run
            SET seen = seen_before, last_seen = seen_before[cardinality(seen_before)]
            WHERE run.server = before.server AND run.observed_at = before.observed_at AND run.status = 'loaded';
        before.observed_at := seen_after[1];
        before.seen := seen_after;
        INSERT INTO fleet.observation SELECT before.*;
    END IF;
    SELECT coalesce(array_agg((run.observed_at, fleet.state_at(run.server, run.observed_at))::fleet.server_state
                              ORDER BY run.observed_at), '{}')
        INTO later
        FROM fleet.observation AS run
        WHERE run.server = observation.server AND run.status = 'loaded' AND run.observed_at > observation.observed_at;
    PERFORM fleet.rewind(observation.server, observation.observed_at);
    PERFORM fleet.advance(observation.server, observation.observed_at, new_state);
    FOREACH state IN ARRAY later LOOP
        PERFORM fleet.advance(observation.server, state.since, state.parts);
    END LOOP;
END
$$;

CREATE OR REPLACE FUNCTION fleet.ingest_loaded(observation fleet.observation, document jsonb) RETURNS text
LANGUAGE plpgsql SET plan_cache_mode = force_custom_plan AS $$
DECLARE
    before fleet.observation;  -- the runs of observations before and after this one
    after fleet.observation;
BEGIN
    SELECT * INTO before FROM fleet.observation AS run
        WHERE run.server = observation.server AND run.status = 'loaded' AND run.observed_at <= observation.observed_at
        ORDER BY run.observed_at DESC LIMIT 1;
    IF observation.sha256 = before.sha256 THEN
        IF observation.observed_at <> ALL (before.seen) THEN
            UPDATE fleet.observation AS run
                SET seen = array(SELECT time FROM unnest(before.seen || observation.seen) AS time ORDER BY time),
                    last_seen = greatest(run.last_seen, observation.observed_at)
                WHERE run.server = before.server AND run.observed_at = before.observed_at AND run.status = 'loaded';
        END IF;
        RETURN 'unchanged';
    ELSIF observation.observed_at = ANY (before.seen) THEN
        observation.status := 'aside';
        observation.reason := format('another file, of SHA-256 %s, was loaded for the same time', before.sha256);
        PERFORM fleet.note_observation(observation);
        RETURN 'aside';
    END IF;
    SELECT * INTO after FROM fleet.observation AS run
        WHERE run.server = observation.server AND run.status = 'loaded' AND run.observed_at > observation.observed_at
        ORDER BY run.observed_at LIMIT 1;
    IF observation.sha256 = after.sha256 AND NOT coalesce(before.last_seen > observation.observed_at, false) THEN
        UPDATE fleet.observation AS run
            SET observed_at = observation.observed_at, seen = observation.seen || run.seen
            WHERE run.server = after.server AND run.observed_at = after.observed_at AND run.status = 'loaded';
    ELSE
        INSERT INTO fleet.observation SELECT observation.*;
    END IF;
    IF before IS NULL AND after IS NULL THEN
        PERFORM fleet.begin_versions(observation.server, observation.observed_at, fleet.observed_parts(document));
        RETURN 'new';
    ELSIF after IS NULL AND before.last_seen < observation.observed_at THEN
        PERFORM fleet.advance(observation.server, observation.observed_at, fleet.observed_parts(document));
    ELSE
        PERFORM fleet.insert_into_history(observation, before, fleet.observed_parts(document));
    END IF;
    RETURN 'changed';
END
$$;

-- Who waits for others has to see what they did meanwhile, or it would be lost.
CREATE OR REPLACE FUNCTION fleet.require_read_committed() RETURNS void
LANGUAGE plpgsql AS $$
BEGIN
    IF current_setting('transaction_isolation') IN ('repeatable read', 'serializable') THEN
        RAISE EXCEPTION 'a transaction of READ COMMITTED is needed, and this one is of %',
            upper(current_setting('transaction_isolation'))
            USING ERRCODE = 'invalid_transaction_state', HINT = 'SET default_transaction_isolation = ''read committed''';
    END IF;
END
$$;

-- Every writer comes through here before it touches a table, so that it waits while a partition moves.
CREATE OR REPLACE FUNCTION fleet.enter(of_server text) RETURNS void
LANGUAGE plpgsql AS $$
BEGIN
    PERFORM fleet.require_read_committed();
    PERFORM pg_advisory_xact_lock_shared(hashtextextended('fleet place', 0));
    PERFORM pg_advisory_xact_lock(hashtextextended('fleet server ' || of_server, 0));
END
$$;

-- Takes an observation, a line of `zebdb-cds export`, and says what it was: new (the first of a server), unchanged,
-- changed, refused, or aside, where another one is known of the same time.
CREATE OR REPLACE FUNCTION fleet.ingest(observation jsonb) RETURNS text
LANGUAGE plpgsql AS $$
DECLARE
    document CONSTANT jsonb := observation || '{}';  -- one that comes from a table is packed; unpacked here, once
    taken fleet.observation;
BEGIN
    taken := fleet.observation_row(document);
    PERFORM fleet.enter(taken.server);
    PERFORM fleet.note_server(taken.server, taken.observed_at);
    IF taken.status = 'refused' THEN
        PERFORM fleet.note_observation(taken);
        RETURN 'refused';
    END IF;
    RETURN fleet.ingest_loaded(taken, document);
EXCEPTION
    WHEN invalid_parameter_value THEN
        RAISE;  -- it is no observation
    WHEN data_exception OR integrity_constraint_violation OR program_limit_exceeded THEN
        RAISE EXCEPTION 'the observation of % at % cannot be kept: %', fleet.printable(observation ->> 'server'),
            observation ->> 'observed_at', SQLERRM
            USING ERRCODE = SQLSTATE;
END
$$;

-- Removes a server with its history; false where there is none of that name.
CREATE OR REPLACE FUNCTION fleet.forget(of_server text) RETURNS boolean
LANGUAGE plpgsql SET plan_cache_mode = force_custom_plan AS $$
BEGIN
    PERFORM fleet.enter(of_server);
    DELETE FROM fleet.processor WHERE server = of_server;
    DELETE FROM fleet.memory WHERE server = of_server;
    DELETE FROM fleet.bridge WHERE server = of_server;
    DELETE FROM fleet.device WHERE server = of_server;
    DELETE FROM fleet.observation WHERE server = of_server;
    DELETE FROM fleet.server WHERE server = of_server;
    RETURN FOUND;
END
$$;

-- Removes what ended before a time: versions of parts, runs of observations and the times within them, refused
-- observations. What was current then stays.
CREATE OR REPLACE PROCEDURE fleet.thin(before timestamptz)
LANGUAGE plpgsql AS $$
BEGIN
    PERFORM pg_advisory_xact_lock_shared(hashtextextended('fleet place', 0));
    DELETE FROM fleet.processor WHERE ended IS NOT NULL AND upper(valid) <= before;
    DELETE FROM fleet.memory WHERE ended IS NOT NULL AND upper(valid) <= before;
    DELETE FROM fleet.bridge WHERE ended IS NOT NULL AND upper(valid) <= before;
    DELETE FROM fleet.device WHERE ended IS NOT NULL AND upper(valid) <= before;
    DELETE FROM fleet.observation AS run
        WHERE status <> 'loaded' AND observed_at < before
           OR status = 'loaded' AND EXISTS (
               SELECT FROM fleet.observation AS next
               WHERE next.server = run.server AND next.status = 'loaded'
                 AND next.observed_at > run.observed_at AND next.observed_at <= before);
    UPDATE fleet.observation AS run
        SET seen = array(SELECT time FROM unnest(run.seen) AS time
                         WHERE time >= before OR time IN (run.observed_at, run.last_seen) ORDER BY time)
        WHERE cardinality(run.seen) > 2 AND run.seen[2] < before;
END
$$;

------------------------------------------------------------------------------------------------------------------------
-- Several machines
------------------------------------------------------------------------------------------------------------------------

-- Which partition is where: the foreign server that has it, null for this machine.
CREATE OR REPLACE VIEW fleet.placement AS
    SELECT number AS partition, srvname AS machine
    FROM generate_series(0, 15) AS number
    JOIN pg_class ON pg_class.oid = to_regclass(format('fleet.server_p%s', lpad(number::text, 2, '0')))
    LEFT JOIN pg_foreign_table ON ftrelid = pg_class.oid
    LEFT JOIN pg_foreign_server ON pg_foreign_server.oid = ftserver;

CREATE OR REPLACE FUNCTION fleet.tables_of(partition integer, OUT name text, OUT partition_name text) RETURNS SETOF record
LANGUAGE sql IMMUTABLE AS $$
    SELECT name, format('%s_p%s', name, lpad(partition::text, 2, '0'))
    FROM unnest('{server,observation,processor,memory,bridge,device}'::text[]) AS name
$$;

-- Shows the tables of a partition on another machine in the schema fleet_moving, to one transaction.
CREATE OR REPLACE FUNCTION fleet.reach(partition integer, machine name) RETURNS void
LANGUAGE plpgsql AS $$
BEGIN
    CREATE SCHEMA fleet_moving;
    EXECUTE format('IMPORT FOREIGN SCHEMA fleet LIMIT TO (identity, tenant, %s) FROM SERVER %I INTO fleet_moving',
                   (SELECT string_agg(quote_ident(partition_name), ', ') FROM fleet.tables_of(partition)), machine);
END
$$;

-- By which a machine is recognised, whatever it is called; this one where `machine` is null. Within reach of another one.
CREATE OR REPLACE FUNCTION fleet.identity_on(machine name) RETURNS uuid
LANGUAGE plpgsql AS $$
DECLARE
    found uuid;
BEGIN
    IF machine IS NULL THEN
        RETURN (SELECT fleet FROM fleet.identity);
    END IF;
    EXECUTE format('CREATE FOREIGN TABLE fleet_moving.other_identity (fleet uuid) SERVER %I '
                   'OPTIONS (schema_name ''fleet'', table_name ''identity'')', machine);
    SELECT fleet INTO found FROM fleet_moving.other_identity;
    DROP FOREIGN TABLE fleet_moving.other_identity;
    RETURN found;
END
$$;

-- Takes a partition of another machine for this fleet, empty. What another fleet has there is not touched.
CREATE OR REPLACE FUNCTION fleet.occupy(of_partition integer, machine name) RETURNS void
LANGUAGE plpgsql AS $$
DECLARE
    here CONSTANT uuid := (SELECT fleet FROM fleet.identity);
    source CONSTANT name := (SELECT placement.machine FROM fleet.placement WHERE partition = of_partition);
    tenant uuid;
    is_used boolean;
BEGIN
    PERFORM fleet.reach(of_partition, machine);
    IF here = (SELECT fleet FROM fleet_moving.identity) THEN
        RAISE EXCEPTION 'the fleet on "%" is this one', machine
            USING HINT = 'Give the address of another database, or "local".';
    END IF;
    IF fleet.identity_on(source) = (SELECT fleet FROM fleet_moving.identity) THEN
        RAISE EXCEPTION '"%" has the identity of "%", where partition % is', machine, source, of_partition
            USING HINT = 'A database is known by one name. Give the address by which partitions were placed there first.';
    END IF;
    SELECT fleet INTO tenant FROM fleet_moving.tenant WHERE partition = of_partition;
    EXECUTE format('SELECT EXISTS (SELECT FROM fleet_moving.server_p%s)', lpad(of_partition::text, 2, '0')) INTO is_used;
    IF tenant <> here OR tenant IS NULL AND is_used THEN
        RAISE EXCEPTION 'partition % on "%" has servers of another fleet', of_partition, machine
            USING HINT = 'Give the address of a database that is kept for this fleet.';
    END IF;
    PERFORM fleet.empty_moving(of_partition);
    DELETE FROM fleet_moving.tenant WHERE partition = of_partition;
    INSERT INTO fleet_moving.tenant VALUES (of_partition, here);
END
$$;

CREATE OR REPLACE FUNCTION fleet.empty_moving(partition integer) RETURNS void
LANGUAGE plpgsql AS $$
BEGIN
    EXECUTE 'TRUNCATE ' || (SELECT string_agg(format('fleet_moving.%I', partition_name), ', ')
                            FROM fleet.tables_of(partition));
END
$$;

-- Tables of this machine for a partition, empty, in the schema fleet_moving.
CREATE OR REPLACE FUNCTION fleet.make_room(partition integer) RETURNS void
LANGUAGE plpgsql AS $$
DECLARE
    each record;
BEGIN
    CREATE SCHEMA fleet_moving;
    FOR each IN SELECT * FROM fleet.tables_of(partition) LOOP
        EXECUTE format('CREATE TABLE fleet_moving.%I (LIKE fleet.%I INCLUDING ALL)', each.partition_name, each.name);
        PERFORM fleet.add_keys(each.name, format('fleet_moving.%I', each.partition_name));
    END LOOP;
END
$$;

-- Copies a table of a partition to fleet_moving, reads it again there and compares.
CREATE OR REPLACE FUNCTION fleet.copy_to_moving(partition_name text) RETURNS void
LANGUAGE plpgsql AS $$
DECLARE
    copied CONSTANT text := (SELECT string_agg(quote_ident(attname), ', ' ORDER BY attnum) FROM pg_attribute
                             WHERE attrelid = to_regclass('fleet.' || quote_ident(partition_name))
                               AND attnum > 0 AND attgenerated = '' AND NOT attisdropped);
    checksum CONSTANT text := 'SELECT format(''%%s rows of checksum %%s'', count(*), sum(hashtextextended(row::text, 0)))'
                              ' FROM (SELECT %s FROM %I.%I) AS row';
    here text;
    there text;
BEGIN
    EXECUTE format('INSERT INTO fleet_moving.%1$I (%2$s) SELECT %2$s FROM fleet.%1$I', partition_name, copied);
    EXECUTE format(checksum, copied, 'fleet', partition_name) INTO here;
    EXECUTE format(checksum, copied, 'fleet_moving', partition_name) INTO there;
    IF here <> there THEN
        RAISE EXCEPTION 'the copy of % is another one: % became %', partition_name, here, there;
    END IF;
END
$$;

-- Waits for the questions that are under way. Others only wait for this as long as it waits itself, and it does not for
-- long, so that none waits in a circle.
CREATE OR REPLACE FUNCTION fleet.lock_tables() RETURNS void
LANGUAGE plpgsql SET lock_timeout = '500ms' AS $$
BEGIN
    FOR attempt IN 1..100 LOOP
        BEGIN
            LOCK TABLE ONLY fleet.server, ONLY fleet.observation, ONLY fleet.processor, ONLY fleet.memory,
                       ONLY fleet.bridge, ONLY fleet.device IN ACCESS EXCLUSIVE MODE;
            RETURN;
        EXCEPTION WHEN lock_not_available THEN
            PERFORM pg_sleep(0.2);
        END;
    END LOOP;
    RAISE EXCEPTION 'questions have kept the tables busy for a minute' USING HINT = 'Nothing has moved. Try it again later.';
END
$$;

-- Moves a partition to the foreign server `machine`, or to this machine, where that is null; false where it is there
-- already. Who writes waits meanwhile, who asks does not, but for the moment in which one partition takes the place of
-- the other. All or nothing: a copy that came to be on another machine without the rest is made again.
CREATE OR REPLACE FUNCTION fleet.place(of_partition integer, machine name) RETURNS boolean
LANGUAGE plpgsql AS $$
DECLARE
    bound CONSTANT text := format('FOR VALUES WITH (MODULUS 16, REMAINDER %s)', of_partition);
    source name;
    each record;
BEGIN
    PERFORM fleet.require_read_committed();
    PERFORM pg_advisory_xact_lock(hashtextextended('fleet place', 0));
    SELECT placement.machine INTO STRICT source FROM fleet.placement WHERE partition = of_partition;
    IF source IS NOT DISTINCT FROM machine THEN
        RETURN false;
    END IF;
    IF machine IS NULL THEN
        PERFORM fleet.make_room(of_partition);
    ELSE
        PERFORM fleet.occupy(of_partition, machine);
    END IF;
    PERFORM fleet.copy_to_moving(partition_name) FROM fleet.tables_of(of_partition);
    PERFORM fleet.lock_tables();
    FOR each IN SELECT * FROM fleet.tables_of(of_partition) LOOP
        EXECUTE format('DROP %s fleet.%I', CASE WHEN source IS NULL THEN 'TABLE' ELSE 'FOREIGN TABLE' END,
                       each.partition_name);
        IF machine IS NULL THEN
            EXECUTE format('ALTER TABLE fleet_moving.%I SET SCHEMA fleet', each.partition_name);
            EXECUTE format('ALTER TABLE fleet.%I ATTACH PARTITION fleet.%I %s', each.name, each.partition_name, bound);
        ELSE
            EXECUTE format('CREATE FOREIGN TABLE fleet.%I PARTITION OF fleet.%I %s SERVER %I '
                           'OPTIONS (schema_name ''fleet'', table_name %L)',
                           each.partition_name, each.name, bound, machine, each.partition_name);
        END IF;
    END LOOP;
    DROP SCHEMA fleet_moving CASCADE;
    INSERT INTO fleet.leftover SELECT of_partition, source WHERE source IS NOT NULL;
    DELETE FROM fleet.leftover WHERE partition = of_partition AND leftover.machine = place.machine;
    RETURN true;
END
$$;

-- Empties what a partition left behind on a machine that it has moved from.
CREATE OR REPLACE FUNCTION fleet.vacate(of_partition integer, machine name) RETURNS void
LANGUAGE plpgsql AS $$
DECLARE
    home name;
BEGIN
    PERFORM fleet.require_read_committed();
    PERFORM pg_advisory_xact_lock(hashtextextended('fleet place', 0));
    DELETE FROM fleet.leftover WHERE partition = of_partition AND leftover.machine = vacate.machine;
    SELECT placement.machine INTO STRICT home FROM fleet.placement WHERE partition = of_partition;
    IF machine = home THEN
        RAISE EXCEPTION 'partition % is on "%"', of_partition, machine;
    END IF;
    PERFORM fleet.reach(of_partition, machine);
    IF EXISTS (SELECT FROM fleet_moving.tenant WHERE partition = of_partition
                 AND fleet = (SELECT fleet FROM fleet.identity))
       AND fleet.identity_on(home) <> (SELECT fleet FROM fleet_moving.identity) THEN
        PERFORM fleet.empty_moving(of_partition);
        DELETE FROM fleet_moving.tenant WHERE partition = of_partition;
    END IF;
    DROP SCHEMA fleet_moving CASCADE;
END
$$;

------------------------------------------------------------------------------------------------------------------------
-- Questions
------------------------------------------------------------------------------------------------------------------------

-- Where a part number is now.
CREATE OR REPLACE FUNCTION fleet.part(part_no text)
RETURNS TABLE (server text, kind text, place text, ordinal integer, manufacturer text, serial_no text, since timestamptz)
LANGUAGE sql STABLE AS $$
    SELECT server, 'processor', place, ordinal, manufacturer, serial_no, lower(valid)
    FROM fleet.processor
    WHERE part_no = fleet.trimmed(part.part_no) AND ended IS NULL
    UNION ALL
    SELECT server, 'memory', place, ordinal, manufacturer, serial_no, lower(valid)
    FROM fleet.memory
    WHERE part_no = fleet.trimmed(part.part_no) AND ended IS NULL
    ORDER BY 1, 2, 3, 4
$$;

-- What went and is not back: neither is there anything in its place, nor is its serial number elsewhere in the server.
CREATE OR REPLACE FUNCTION fleet.lost(since timestamptz)
RETURNS TABLE (server text, kind text, place text, ordinal integer, lost_at timestamptz, ended text, serial_no text,
               part_no text, was text)
LANGUAGE sql STABLE AS $$
    SELECT lost.server, lost.kind, lost.place, lost.ordinal, upper(lost.valid), lost.ended, lost.serial_no,
           fleet.trimmed(lost.raw ->> 'PartNo'), fleet.described(lost.kind, lost.raw)
    FROM fleet.part_version AS lost
    LEFT JOIN LATERAL (
        SELECT true AS is_there
        FROM fleet.part_version AS now
        WHERE now.server = lost.server AND now.kind = lost.kind AND now.ended IS NULL
          AND now.place = lost.place AND now.ordinal = lost.ordinal AND NOT now.is_empty
        LIMIT 1) AS replaced ON true
    LEFT JOIN LATERAL (
        SELECT true AS is_there
        FROM fleet.part_version AS now
        WHERE now.server = lost.server AND now.kind = lost.kind AND now.ended IS NULL
          AND now.serial_no = lost.real_serial
        LIMIT 1) AS found ON true
    WHERE lost.ended IN ('removed', 'emptied') AND upper(lost.valid) >= since AND NOT lost.is_empty
      AND replaced.is_there IS NULL AND found.is_there IS NULL
    ORDER BY 1, 2, 3, 4, 5
$$;

-- Where memory went, in servers that have less of it than at a time, or at the first observation since.
CREATE OR REPLACE FUNCTION fleet.lost_capacity(since timestamptz)
RETURNS TABLE (server text, place text, ordinal integer, before_mib bigint, now_mib bigint, server_before_mib bigint,
               server_now_mib bigint)
LANGUAGE sql STABLE AS $$
    SELECT lost.server, lost.place, lost.ordinal, place.before_mib, place.now_mib, whole.before_mib, whole.now_mib
    FROM (SELECT DISTINCT server, place, ordinal
          FROM fleet.memory
          WHERE lost_mib > 0 AND upper(valid) >= since) AS lost
    CROSS JOIN LATERAL (
        SELECT greatest(since, min(observed_at)) AS moment
        FROM fleet.observation
        WHERE server = lost.server AND status = 'loaded') AS start
    CROSS JOIN LATERAL (
        SELECT coalesce(sum(size_mib) FILTER (WHERE valid @> start.moment), 0)::bigint AS before_mib,
               coalesce(sum(size_mib) FILTER (WHERE ended IS NULL), 0)::bigint AS now_mib
        FROM fleet.memory
        WHERE server = lost.server) AS whole
    CROSS JOIN LATERAL (
        SELECT coalesce(sum(size_mib) FILTER (WHERE valid @> start.moment), 0)::bigint AS before_mib,
               coalesce(sum(size_mib) FILTER (WHERE ended IS NULL), 0)::bigint AS now_mib
        FROM fleet.memory
        WHERE server = lost.server AND place = lost.place AND ordinal = lost.ordinal) AS place
    WHERE whole.now_mib < whole.before_mib AND place.now_mib < place.before_mib
    ORDER BY 1, 2, 3
$$;

-- Servers of which the modules are not all alike: how many part numbers, sizes, speeds and manufacturers they have.
CREATE OR REPLACE FUNCTION fleet.mixed_memory()
RETURNS TABLE (server text, modules bigint, part_numbers bigint, sizes bigint, speeds bigint, manufacturers bigint)
LANGUAGE sql STABLE AS $$
    SELECT server, count(*), count(DISTINCT part_no), count(DISTINCT size_mib), count(DISTINCT max_speed),
           count(DISTINCT manufacturer)
    FROM fleet.memory
    WHERE ended IS NULL AND size_mib > 0
    GROUP BY server
    HAVING count(DISTINCT part_no) > 1 OR count(DISTINCT size_mib) > 1 OR count(DISTINCT max_speed) > 1
        OR count(DISTINCT manufacturer) > 1
    ORDER BY 1
$$;

-- Serial numbers that more than one part has.
CREATE OR REPLACE FUNCTION fleet.duplicate_serials()
RETURNS TABLE (serial_no text, kind text, server text, place text, ordinal integer)
LANGUAGE sql STABLE AS $$
    SELECT real_serial, kind, server, place, ordinal
    FROM fleet.part_version
    JOIN (SELECT kind, real_serial
          FROM fleet.part_version
          WHERE ended IS NULL AND real_serial IS NOT NULL
          GROUP BY kind, real_serial
          HAVING count(*) > 1) AS several USING (kind, real_serial)
    WHERE ended IS NULL
    ORDER BY 1, 2, 3, 4, 5
$$;

-- Where a serial number has been.
CREATE OR REPLACE FUNCTION fleet.serial_history(serial text)
RETURNS TABLE (server text, kind text, place text, ordinal integer, seen_from timestamptz, seen_until timestamptz,
               ended text)
LANGUAGE sql STABLE AS $$
    SELECT server, kind, place, ordinal, lower(valid), upper(valid), ended
    FROM fleet.part_version
    WHERE serial_no = fleet.trimmed(serial)
    ORDER BY 5, 1, 2, 3, 4
$$;

-- What processors there are.
CREATE OR REPLACE FUNCTION fleet.processor_models()
RETURNS TABLE (model text, manufacturer text, processors bigint, servers bigint)
LANGUAGE sql STABLE AS $$
    SELECT model, manufacturer, count(*), count(DISTINCT server)
    FROM fleet.processor
    WHERE ended IS NULL AND NOT is_empty
    GROUP BY model, manufacturer
    ORDER BY 1, 2
$$;

-- Servers of which there is no observation since a time.
CREATE OR REPLACE FUNCTION fleet.silent(since timestamptz)
RETURNS TABLE (server text, last_seen timestamptz)
LANGUAGE sql STABLE AS $$
    SELECT server, last_seen
    FROM fleet.server
    WHERE last_seen < since
    ORDER BY 1
$$;

COMMIT;
