/* ---------------------------------------------------------------------------
   Lantern Quay Tea & Spice - trading database, release 4.2

   Fills an EMPTY database. Run it in the database of your choice; it contains
   neither CREATE DATABASE nor USE.

   Order of things: types, schemas, roles, tables, rows, relationships,
   secondary indexes, programs, permissions. The triggers come after the rows,
   so that loading writes no change log.
   --------------------------------------------------------------------------- */
SET NOCOUNT ON;
SET ANSI_NULLS ON;
SET QUOTED_IDENTIFIER ON;
GO

CREATE SCHEMA sales;
GO
CREATE SCHEMA stock AUTHORIZATION dbo;
GO

CREATE ROLE sales_clerk;
CREATE ROLE stock_clerk;
CREATE ROLE auditor;
GO

/* Types that several tables share. Weights are kilograms, to the gram. */
CREATE TYPE dbo.PhoneNumber FROM nvarchar(25) NULL;
CREATE TYPE dbo.Sku FROM varchar(12) NOT NULL;
CREATE TYPE dbo.Weight FROM decimal(9, 3) NOT NULL;
GO

-----------------------------------------------------------------------------
-- Master data
-----------------------------------------------------------------------------

CREATE TABLE dbo.Country
(
    Code        char(2)       NOT NULL CONSTRAINT PK_Country PRIMARY KEY CLUSTERED,
    Name        nvarchar(60)  NOT NULL CONSTRAINT UQ_Country_Name UNIQUE,
    IsEuMember  bit           NOT NULL DEFAULT 0,
    CONSTRAINT CK_Country_Code CHECK (Code LIKE '[A-Z][A-Z]')
);
GO

CREATE TABLE dbo.Category
(
    CategoryId   smallint IDENTITY(1, 1) NOT NULL,
    Name         nvarchar(40)  NOT NULL,
    Description  nvarchar(max) NULL,
    SortOrder    tinyint       NOT NULL CONSTRAINT DF_Category_SortOrder DEFAULT (0),
    CONSTRAINT PK_Categories PRIMARY KEY CLUSTERED (CategoryId)
);
GO

CREATE TABLE dbo.Supplier
(
    SupplierId   int IDENTITY(100, 10) NOT NULL,
    Name         nvarchar(60)     NOT NULL,
    ContactName  nvarchar(60)     NULL,
    Phone        dbo.PhoneNumber,
    Email        varchar(120)     NULL,
    CountryCode  char(2)          NOT NULL,
    LeadTimeDays smallint         NOT NULL CONSTRAINT DF_Supplier_LeadTimeDays DEFAULT (30),
    Rating       decimal(3, 1)    NULL,
    RowGuid      uniqueidentifier NOT NULL CONSTRAINT DF_Supplier_RowGuid DEFAULT (newid()),
    CONSTRAINT PK_Supplier PRIMARY KEY CLUSTERED (SupplierId),
    CONSTRAINT CK_Supplier_Rating CHECK (Rating BETWEEN 0 AND 10)
);
GO

CREATE TABLE dbo.Product
(
    ProductId     int IDENTITY(1, 1) NOT NULL,
    Sku           dbo.Sku,
    Name          nvarchar(80)   NOT NULL,
    CategoryId    smallint       NOT NULL,
    SupplierId    int            NULL,
    OriginCountry char(2)        NULL,
    NetWeight     dbo.Weight,
    ListPrice     money          NOT NULL,
    VatCode       char(1)        NOT NULL CONSTRAINT DF_Product_VatCode DEFAULT ('R'),
    ReorderLevel  int            NOT NULL CONSTRAINT DF_Product_ReorderLevel DEFAULT (10),
    IsOrganic     bit            NOT NULL CONSTRAINT DF_Product_IsOrganic DEFAULT ((0)),
    Discontinued  bit            NOT NULL CONSTRAINT DF_Product_Discontinued DEFAULT 0,
    LabelImage    varbinary(max) NULL,
    Notes         nvarchar(max)  NULL,
    PricePerKilo  AS CONVERT(money, ListPrice / NULLIF(NetWeight, 0)),
    CreatedAt     datetime2(0)   NOT NULL CONSTRAINT DF_Product_CreatedAt DEFAULT (sysutcdatetime()),
    CONSTRAINT PK_Product PRIMARY KEY CLUSTERED (ProductId),
    CONSTRAINT UQ_Product_Sku UNIQUE NONCLUSTERED (Sku),
    CONSTRAINT CK_Product_ListPrice CHECK (ListPrice >= 0),
    CONSTRAINT CK_Product_VatCode CHECK (VatCode IN ('R', 'S', 'Z'))
);
GO

-- Name/value pairs of the trading application. One row a setting.
CREATE TABLE dbo.Setting
(
    Name      sysname        NOT NULL,
    Value     nvarchar(400)  NULL,
    ChangedAt datetime       NOT NULL CONSTRAINT DF_Setting_ChangedAt DEFAULT (getdate()),
    CONSTRAINT PK_Setting PRIMARY KEY CLUSTERED (Name)
);
GO

-- Orders still come by fax from two hotels. The fax server polls this table.
CREATE TABLE dbo.FaxQueue
(
    FaxId      int IDENTITY(1, 1) NOT NULL PRIMARY KEY,
    CustomerNo int            NOT NULL,
    ReceivedAt smalldatetime  NOT NULL DEFAULT (getdate()),
    Pages      tinyint        NOT NULL CHECK (Pages > 0),
    Scan       varbinary(max) NULL,
    Handled    bit            NOT NULL CONSTRAINT DF_FaxQueue_Handled DEFAULT (0)
);
GO

-----------------------------------------------------------------------------
-- Sales
-----------------------------------------------------------------------------

CREATE TABLE sales.Customer
(
    CustomerNo   int           NOT NULL,
    Name         nvarchar(80)  NOT NULL,
    ContactName  nvarchar(60)  NULL,
    Street       nvarchar(80)  NULL,
    PostalCode   varchar(12)   NULL,
    City         nvarchar(50)  NOT NULL,
    CountryCode  char(2)       NOT NULL,
    Phone        dbo.PhoneNumber,
    FaxNumber    dbo.PhoneNumber,
    Email        varchar(120)  NULL,
    CreditLimit  decimal(10, 2) NOT NULL CONSTRAINT DF_Customer_CreditLimit DEFAULT (500),
    CustomerSince date         NOT NULL CONSTRAINT DF_Customer_CustomerSince DEFAULT (CONVERT(date, getdate())),
    IsActive     bit           NOT NULL DEFAULT 1,
    CONSTRAINT PK_Customer PRIMARY KEY CLUSTERED (CustomerNo)
);
GO

CREATE TABLE sales.SalesOrder
(
    OrderNo      int IDENTITY(5001, 1) NOT NULL,
    CustomerNo   int            NOT NULL,
    OrderDate    datetime2(0)   NOT NULL CONSTRAINT DF_SalesOrder_OrderDate DEFAULT (sysdatetime()),
    RequiredDate date           NULL,
    ShippedOn    date           NULL,
    Status       char(1)        NOT NULL CONSTRAINT DF_SalesOrder_Status DEFAULT ('N'),
    Freight      smallmoney     NOT NULL CONSTRAINT DF_SalesOrder_Freight DEFAULT (0),
    Remarks      nvarchar(200)  NULL,
    CONSTRAINT PK_SalesOrder PRIMARY KEY CLUSTERED (OrderNo),
    CONSTRAINT CK_SalesOrder_Status CHECK (Status IN ('N', 'P', 'S', 'X')),
    CONSTRAINT CK_SalesOrder_Shipped CHECK (ShippedOn IS NULL OR ShippedOn >= CONVERT(date, OrderDate))
);
GO

CREATE TABLE sales.OrderLine
(
    OrderNo     int           NOT NULL,
    [LineNo]    smallint      NOT NULL,
    ProductId   int           NOT NULL,
    Quantity    int           NOT NULL CONSTRAINT DF_OrderLine_Quantity DEFAULT (1),
    UnitPrice   money         NOT NULL,
    DiscountPct decimal(5, 2) NOT NULL CONSTRAINT DF_OrderLine_DiscountPct DEFAULT (0.0),
    LineTotal   AS CONVERT(money, Quantity * UnitPrice * (1 - DiscountPct / 100.0)) PERSISTED NOT NULL,
    CONSTRAINT PK_OrderLine PRIMARY KEY CLUSTERED (OrderNo, [LineNo]),
    CONSTRAINT CK_OrderLine_Quantity CHECK (Quantity > 0)
);
GO

CREATE TABLE sales.[Price List]
(
    ProductId  int     NOT NULL,
    ValidFrom  date    NOT NULL,
    ValidTo    date    NULL,
    [Net Price] money  NOT NULL,
    Currency   char(3) NOT NULL CONSTRAINT [DF_Price List_Currency] DEFAULT ('EUR'),
    CONSTRAINT [PK_Price List] PRIMARY KEY CLUSTERED (ProductId, ValidFrom)
);
GO

-- A tin or two of the same tea every month, until further notice.
CREATE TABLE sales.Subscription
(
    SubscriptionId uniqueidentifier NOT NULL CONSTRAINT DF_Subscription_SubscriptionId DEFAULT (newsequentialid()),
    CustomerNo     int          NOT NULL,
    ProductId      int          NOT NULL,
    Tins           tinyint      NOT NULL CONSTRAINT DF_Subscription_Tins DEFAULT ((1)),
    StartedOn      date         NOT NULL,
    CancelledOn    date         NULL,
    DeliverAt      time(0)      NULL,
    CONSTRAINT PK_Subscription PRIMARY KEY NONCLUSTERED (SubscriptionId)
);
CREATE CLUSTERED INDEX CIX_Subscription ON sales.Subscription (CustomerNo, StartedOn);
GO

CREATE TABLE sales.Payment
(
    PaymentId int IDENTITY(1, 1) NOT NULL,
    OrderNo   int          NOT NULL,
    PaidOn    date         NOT NULL,
    Amount    money        NOT NULL,
    Method    varchar(10)  NOT NULL CONSTRAINT DF_Payment_Method DEFAULT ('TRANSFER'),
    Reference nvarchar(40) NULL,
    CONSTRAINT PK_Payment PRIMARY KEY CLUSTERED (PaymentId),
    CONSTRAINT CK_Payment_Amount CHECK (Amount <> 0)
);
GO

CREATE TABLE sales.ChangeLog
(
    LoggedAt datetime2(3)  NOT NULL CONSTRAINT DF_sales_ChangeLog_LoggedAt DEFAULT (sysutcdatetime()),
    LoggedBy sysname       NOT NULL CONSTRAINT DF_sales_ChangeLog_LoggedBy DEFAULT (suser_sname()),
    OrderNo  int           NOT NULL,
    What     nvarchar(400) NOT NULL
);
GO

-----------------------------------------------------------------------------
-- Stock and purchasing
-----------------------------------------------------------------------------

CREATE TABLE stock.Warehouse
(
    WarehouseId tinyint      NOT NULL CONSTRAINT PK_Warehouse PRIMARY KEY,
    Name        nvarchar(40) NOT NULL,
    City        nvarchar(50) NOT NULL,
    FloorArea   float        NULL,
    IsBonded    bit          NOT NULL CONSTRAINT DF_Warehouse_IsBonded DEFAULT (0)
);
GO

CREATE TABLE stock.PurchaseOrder
(
    PurchaseNo  int          NOT NULL,
    SupplierId  int          NOT NULL,
    OrderedOn   date         NOT NULL,
    ExpectedOn  date         NULL,
    Currency    char(3)      NOT NULL CONSTRAINT DF_PurchaseOrder_Currency DEFAULT ('USD'),
    Incoterm    char(3)      NULL,
    Closed      bit          NOT NULL CONSTRAINT DF_PurchaseOrder_Closed DEFAULT (0),
    CONSTRAINT PK_PurchaseOrder PRIMARY KEY CLUSTERED (PurchaseNo)
);
GO

CREATE TABLE stock.PurchaseLine
(
    PurchaseNo int            NOT NULL,
    [LineNo]   smallint       NOT NULL,
    ProductId  int            NOT NULL,
    Kilos      dbo.Weight,
    PriceKilo  decimal(12, 4) NOT NULL,
    CONSTRAINT PK_PurchaseLine PRIMARY KEY CLUSTERED (PurchaseNo, [LineNo]),
    CONSTRAINT CK_PurchaseLine_Kilos CHECK (Kilos > 0)
);
GO

-- A lot is what came in on one purchase line: it can be traced to the garden.
CREATE TABLE stock.Lot
(
    LotNo      varchar(16)  NOT NULL,
    PurchaseNo int          NOT NULL,
    [LineNo]   smallint     NOT NULL,
    Garden     nvarchar(60) NULL,
    HarvestedOn date        NULL,
    BestBefore date         NOT NULL,
    Certificate varbinary(64) NULL,
    CONSTRAINT PK_Lot PRIMARY KEY CLUSTERED (LotNo)
);
GO

CREATE TABLE stock.StockMove
(
    MoveId      bigint IDENTITY(1, 1) NOT NULL,
    MovedAt     datetime     NOT NULL CONSTRAINT DF_StockMove_MovedAt DEFAULT (getdate()),
    LotNo       varchar(16)  NOT NULL,
    WarehouseId tinyint      NOT NULL,
    Kilos       decimal(9, 3) NOT NULL,
    Kind        char(3)      NOT NULL,
    OrderNo     int          NULL,
    CONSTRAINT PK_StockMove PRIMARY KEY CLUSTERED (MoveId),
    CONSTRAINT CK_StockMove_Kind CHECK (Kind IN ('IN', 'OUT', 'ADJ', 'TRF'))
);
GO

CREATE TABLE stock.ChangeLog
(
    LoggedAt datetime2(3)  NOT NULL CONSTRAINT DF_stock_ChangeLog_LoggedAt DEFAULT (sysutcdatetime()),
    LotNo    varchar(16)   NOT NULL,
    What     nvarchar(400) NOT NULL
);
GO

-----------------------------------------------------------------------------
-- Rows
-----------------------------------------------------------------------------

INSERT INTO dbo.Country (Code, Name, IsEuMember) VALUES
    ('AT', N'Österreich', 1),
    ('BE', N'België / Belgique', 1),
    ('BR', N'Brasil', 0),
    ('CH', N'Schweiz', 0),
    ('CN', N'中国', 0),
    ('CZ', N'Česko', 1),
    ('DE', N'Deutschland', 1),
    ('DK', N'Danmark', 1),
    ('ES', N'España', 1),
    ('FR', N'France', 1),
    ('GR', N'Ελλάδα', 1),
    ('GT', N'Guatemala', 0),
    ('HU', N'Magyarország', 1),
    ('ID', N'Indonesia', 0),
    ('IN', N'India', 0),
    ('IR', N'Iran', 0),
    ('IT', N'Italia', 1),
    ('JP', N'日本', 0),
    ('KE', N'Kenya', 0),
    ('LK', N'Sri Lanka', 0),
    ('MA', N'Maroc', 0),
    ('MG', N'Madagascar', 0),
    ('NL', N'Nederland', 1),
    ('NP', N'Nepal', 0),
    ('PL', N'Polska', 1),
    ('PT', N'Portugal', 1),
    ('SE', N'Sverige', 1),
    ('TR', N'Türkiye', 0),
    ('TZ', N'Tanzania', 0),
    ('VN', N'Việt Nam', 0),
    ('ZA', N'South Africa', 0);
GO

SET IDENTITY_INSERT dbo.Category ON;
INSERT INTO dbo.Category (CategoryId, Name, Description, SortOrder) VALUES
    (1, N'Black tea', N'Fully oxidised leaves: Assam, Ceylon, Keemun and blends.', 1),
    (2, N'Green tea', N'Unoxidised; steamed in Japan, pan-fired in China.', 2),
    (3, N'Oolong', N'Half way, from jade green to roasted.', 3),
    (4, N'Herbal infusion', NULL, 4),
    (5, N'Spice', N'Whole and ground. Ground spices are milled to order on Tuesdays.', 5),
    (6, N'Spice blend', N'Own recipes. Nothing is sold that the kitchen hasn''t tasted.', 6),
    (7, N'Accessories', N'Pots, strainers, tins.', 9);
SET IDENTITY_INSERT dbo.Category OFF;
GO

SET IDENTITY_INSERT dbo.Supplier ON;
INSERT INTO dbo.Supplier (SupplierId, Name, ContactName, Phone, Email, CountryCode, LeadTimeDays, Rating, RowGuid) VALUES
    (100, N'Tea Estates of Upper Assam', N'R. Barooah', N'+91 373 231 4400', 'exports@upperassam.example', 'IN', 45, 8.5, '961BD48D-3B8F-47BB-A627-057DBE6331AA'),
    (110, N'Kandy Highland Growers', N'Nimal Perera', N'+94 81 222 3190', 'sales@kandyhighland.example', 'LK', 40, 9.0, '9D5369A1-2C7A-4968-A815-87FA31F24003'),
    (120, N'Shizuoka Midori K.K.', N'佐藤 恵', N'+81 54 200 1188', 'info@midori.example', 'JP', 35, 9.5, 'E5D0C03E-0979-479D-A7C6-A7200EFDDC27'),
    (130, N'Wuyi Mountain Tea Co-operative', N'林 海', N'+86 599 510 2233', NULL, 'CN', 60, 7.5, 'B49FE7CD-1F16-493A-A3F7-81B26B82938E'),
    (140, N'Ilam Small Farmers', N'Sita Gurung', N'+977 27 520 118', 'office@ilamfarmers.example', 'NP', 55, 8.0, 'B78752D7-9F08-4887-A92E-ABDEF867DAF7'),
    (150, N'Malabar Spice Traders', N'Thomas Kurian', N'+91 484 221 7070', 'export@malabarspice.example', 'IN', 45, 7.0, '6BDAC72D-8B00-4D21-A9DB-A09416196F74'),
    (160, N'Zafaran & Sons', N'M. Ahmadi', N'+98 51 3884 2200', NULL, 'IR', 70, 8.5, '3E56DC1D-781A-470E-AFBE-F3013578D4B2'),
    (170, N'Vanille du Sambava', N'Hery Rakoto', N'+261 20 889 1044', 'contact@sambava.example', 'MG', 50, NULL, 'BD71450A-43BA-4155-AF04-803E38924BED'),
    (180, N'Ceylon Cinnamon House', N'Dilani Silva', N'+94 91 223 4567', 'dilani@cinnamonhouse.example', 'LK', 40, 9.0, '1DE0DF96-AC7D-49F7-A810-1BB616E0D2E1'),
    (190, N'Atlas Herbes', N'Youssef El Amrani', N'+212 524 44 8810', 'atlas@herbes.example', 'MA', 20, 6.5, 'A4ED1C91-01F4-449F-AE10-6451CBF64028'),
    (200, N'Töpferei Brandt', N'Ulrike Brandt', N'+49 3691 77 120', 'werkstatt@brandt-keramik.example', 'DE', 14, 8.0, 'D76D2B18-B711-443A-AE55-9E911EA5964A'),
    (210, N'Cardamomo Alta Verapaz', N'Lucía Coy', N'+502 7952 3311', 'ventas@altaverapaz.example', 'GT', 65, 7.5, 'A9D17C3E-A993-4A6E-A741-CFD6897C6B34');
SET IDENTITY_INSERT dbo.Supplier OFF;
GO

SET IDENTITY_INSERT dbo.Product ON;
INSERT INTO dbo.Product (ProductId, Sku, Name, CategoryId, SupplierId, OriginCountry, NetWeight, ListPrice,
    VatCode, ReorderLevel, IsOrganic, Discontinued, LabelImage, Notes, CreatedAt) VALUES
    (1, 'BT-ASM-100', N'Assam Second Flush, 100 g', 1, 100, 'IN', 0.100, 6.90, 'R', 40, 0, 0, 0x89504E470D0A1A0A711B1E7F, NULL, '2021-01-10 08:00:00'),
    (2, 'BT-ASM-250', N'Assam Second Flush, 250 g', 1, 100, 'IN', 0.250, 14.90, 'R', 30, 0, 0, NULL, NULL, '2021-02-11 08:00:00'),
    (3, 'BT-ASB-250', N'Assam Broken, 250 g', 1, 100, 'IN', 0.250, 11.50, 'R', 30, 0, 0, NULL, NULL, '2021-03-12 08:00:00'),
    (4, 'BT-CEY-100', N'Ceylon Dimbula OP, 100 g', 1, 110, 'LK', 0.100, 5.80, 'R', 40, 0, 0, NULL, NULL, '2021-04-13 08:00:00'),
    (5, 'BT-CEY-250', N'Ceylon Dimbula OP, 250 g', 1, 110, 'LK', 0.250, 12.40, 'R', 30, 0, 0, NULL, NULL, '2021-05-14 08:00:00'),
    (6, 'BT-UVA-100', N'Uva Highlands, 100 g', 1, 110, 'LK', 0.100, 7.20, 'R', 20, 1, 0, NULL, NULL, '2021-06-15 08:00:00'),
    (7, 'BT-KEE-100', N'Keemun Hao Ya, 100 g', 1, 130, 'CN', 0.100, 9.80, 'R', 20, 0, 0, NULL, N'Winy, a little smoke.', '2021-07-16 08:00:00'),
    (8, 'BT-LAP-100', N'Lapsang Souchong, 100 g', 1, 130, 'CN', 0.100, 8.40, 'R', 20, 0, 0, NULL, N'Keep away from everything else: it''s smoked.', '2021-08-17 08:00:00'),
    (9, 'BT-EGR-100', N'Earl Grey "Quay", 100 g', 1, 110, 'LK', 0.100, 6.40, 'R', 50, 0, 0, NULL, N'With oil of bergamot from Calabria.', '2021-09-18 08:00:00'),
    (10, 'BT-EBR-250', N'English Breakfast, 250 g', 1, 100, 'IN', 0.250, 10.90, 'R', 50, 0, 0, 0x89504E470D0A1A0AD74A50F2, NULL, '2021-01-10 08:00:00'),
    (11, 'BT-NEP-100', N'Ilam First Flush, 100 g', 1, 140, 'NP', 0.100, 12.80, 'R', 10, 1, 0, NULL, NULL, '2021-02-11 08:00:00'),
    (12, 'GT-SEN-100', N'Sencha Shizuoka, 100 g', 2, 120, 'JP', 0.100, 11.20, 'R', 25, 1, 0, NULL, N'70 °C, one minute and a half.', '2021-03-12 08:00:00'),
    (13, 'GT-GYO-050', N'Gyokuro 玉露, 50 g', 2, 120, 'JP', 0.050, 18.50, 'R', 10, 1, 0, NULL, N'50 °C, two minutes.', '2021-04-13 08:00:00'),
    (14, 'GT-MAT-030', N'Matcha Uji 抹茶, 30 g', 2, 120, 'JP', 0.030, 21.00, 'R', 15, 1, 0, NULL, NULL, '2021-05-14 08:00:00'),
    (15, 'GT-GEN-100', N'Genmaicha, 100 g', 2, 120, 'JP', 0.100, 7.60, 'R', 20, 0, 0, NULL, N'With roasted rice.', '2021-06-15 08:00:00'),
    (16, 'GT-LUN-100', N'Longjing 龙井, 100 g', 2, 130, 'CN', 0.100, 13.40, 'R', 15, 0, 0, NULL, NULL, '2021-07-16 08:00:00'),
    (17, 'GT-GUN-100', N'Gunpowder, 100 g', 2, 130, 'CN', 0.100, 4.90, 'R', 40, 0, 0, NULL, NULL, '2021-08-17 08:00:00'),
    (18, 'OO-TGY-100', N'Tie Guan Yin, 100 g', 3, 130, 'CN', 0.100, 12.60, 'R', 15, 0, 0, NULL, NULL, '2021-09-18 08:00:00'),
    (19, 'OO-DHP-050', N'Da Hong Pao, 50 g', 3, 130, 'CN', 0.050, 16.90, 'R', 10, 0, 0, 0x89504E470D0A1A0A3B24CD4D, NULL, '2021-01-10 08:00:00'),
    (20, 'OO-NEP-100', N'Ilam Oolong, 100 g', 3, 140, 'NP', 0.100, 11.90, 'R', 10, 1, 0, NULL, NULL, '2021-02-11 08:00:00'),
    (21, 'HI-MIN-050', N'Nana mint, 50 g', 4, 190, 'MA', 0.050, 3.40, 'R', 60, 1, 0, NULL, NULL, '2021-03-12 08:00:00'),
    (22, 'HI-VER-050', N'Verbena, 50 g', 4, 190, 'MA', 0.050, 4.20, 'R', 40, 1, 0, NULL, NULL, '2021-04-13 08:00:00'),
    (23, 'HI-ROO-100', N'Rooibos, 100 g', 4, NULL, 'ZA', 0.100, 4.60, 'R', 40, 1, 0, NULL, NULL, '2021-05-14 08:00:00'),
    (24, 'HI-CHA-050', N'Camomile blossoms, 50 g', 4, NULL, 'HU', 0.050, 3.90, 'R', 30, 0, 0, NULL, NULL, '2021-06-15 08:00:00'),
    (25, 'SP-PEP-100', N'Tellicherry pepper, 100 g', 5, 150, 'IN', 0.100, 6.20, 'R', 40, 0, 0, NULL, NULL, '2021-07-16 08:00:00');
INSERT INTO dbo.Product (ProductId, Sku, Name, CategoryId, SupplierId, OriginCountry, NetWeight, ListPrice,
    VatCode, ReorderLevel, IsOrganic, Discontinued, LabelImage, Notes, CreatedAt) VALUES
    (26, 'SP-WPE-080', N'White pepper, 80 g', 5, 150, 'IN', 0.080, 6.80, 'R', 20, 0, 0, NULL, NULL, '2021-08-17 08:00:00'),
    (27, 'SP-CAR-050', N'Green cardamom, 50 g', 5, 210, 'GT', 0.050, 5.90, 'R', 30, 0, 0, NULL, NULL, '2021-09-18 08:00:00'),
    (28, 'SP-CAR-250', N'Green cardamom, 250 g', 5, 210, 'GT', 0.250, 24.50, 'R', 10, 0, 0, 0x89504E470D0A1A0AD959022E, NULL, '2021-01-10 08:00:00'),
    (29, 'SP-CIN-040', N'Ceylon cinnamon, sticks, 40 g', 5, 180, 'LK', 0.040, 4.80, 'R', 40, 1, 0, NULL, NULL, '2021-02-11 08:00:00'),
    (30, 'SP-CIN-100', N'Ceylon cinnamon, ground, 100 g', 5, 180, 'LK', 0.100, 7.40, 'R', 30, 1, 0, NULL, NULL, '2021-03-12 08:00:00'),
    (31, 'SP-SAF-001', N'Saffron threads, 1 g', 5, 160, 'IR', 0.001, 9.90, 'R', 25, 0, 0, NULL, N'Locked cabinet.', '2021-04-13 08:00:00'),
    (32, 'SP-SAF-005', N'Saffron threads, 5 g', 5, 160, 'IR', 0.005, 44.00, 'R', 5, 0, 0, NULL, N'Locked cabinet.', '2021-05-14 08:00:00'),
    (33, 'SP-VAN-002', N'Bourbon vanilla, 2 pods', 5, 170, 'MG', 0.008, 8.90, 'R', 25, 0, 0, NULL, NULL, '2021-06-15 08:00:00'),
    (34, 'SP-VAN-025', N'Bourbon vanilla, 25 g', 5, 170, 'MG', 0.025, 26.00, 'R', 5, 0, 0, NULL, NULL, '2021-07-16 08:00:00'),
    (35, 'SP-TUR-100', N'Turmeric, ground, 100 g', 5, 150, 'IN', 0.100, 3.60, 'R', 40, 1, 0, NULL, NULL, '2021-08-17 08:00:00'),
    (36, 'SP-CLO-050', N'Cloves, 50 g', 5, 170, 'MG', 0.050, 3.80, 'R', 30, 0, 0, NULL, NULL, '2021-09-18 08:00:00'),
    (37, 'SP-NUT-003', N'Nutmeg, 3 nuts', 5, NULL, 'ID', 0.015, 2.90, 'R', 30, 0, 0, 0x89504E470D0A1A0AC228AEBD, NULL, '2021-01-10 08:00:00'),
    (38, 'SB-GAM-060', N'Garam masala, 60 g', 6, NULL, NULL, 0.060, 5.40, 'R', 30, 0, 0, NULL, N'Recipe 3, since 2019.', '2021-02-11 08:00:00'),
    (39, 'SB-RAS-060', N'Ras el hanout, 60 g', 6, 190, 'MA', 0.060, 5.90, 'R', 25, 0, 0, NULL, NULL, '2021-03-12 08:00:00'),
    (40, 'SB-CHA-150', N'Chai blend, 150 g', 6, NULL, NULL, 0.150, 8.20, 'R', 30, 1, 0, NULL, NULL, '2021-04-13 08:00:00'),
    (41, 'SB-GLU-050', N'Mulled wine spice, 50 g', 6, NULL, NULL, 0.050, 4.50, 'R', 0, 0, 0, NULL, N'October to January only.', '2021-05-14 08:00:00'),
    (42, 'AC-POT-001', N'Teapot "Brandt", 0.8 l', 7, 200, 'DE', 0.950, 48.00, 'S', 4, 0, 0, NULL, NULL, '2021-06-15 08:00:00'),
    (43, 'AC-STR-001', N'Strainer, stainless steel', 7, NULL, NULL, 0.045, 7.50, 'S', 20, 0, 0, NULL, NULL, '2021-07-16 08:00:00'),
    (44, 'AC-TIN-100', N'Tin, 100 g, black', 7, NULL, NULL, 0.070, 3.20, 'S', 60, 0, 0, NULL, NULL, '2021-08-17 08:00:00'),
    (45, 'AC-WHI-001', N'Matcha whisk 茶筅', 7, 120, 'JP', 0.030, 19.00, 'S', 8, 0, 0, NULL, NULL, '2021-09-18 08:00:00');
SET IDENTITY_INSERT dbo.Product OFF;
GO

INSERT INTO dbo.Setting (Name, Value, ChangedAt) VALUES
    (N'Company.Name', N'Lantern Quay Tea & Spice GmbH', '2023-01-02T10:00:00.000'),
    (N'Company.City', N'Bremen', '2023-01-02T10:01:00.700'),
    (N'Invoice.NextNumber', N'230418', '2023-01-02T10:02:00.400'),
    (N'Invoice.Footer', N'Vielen Dank für Ihren Einkauf! – Thank you – Merci', '2023-01-02T10:03:00.100'),
    (N'Mail.SmtpHost', N'mail.lanternquay.example', '2023-01-02T10:04:00.800'),
    (N'Fax.Enabled', N'1', '2023-01-02T10:05:00.500'),
    (N'Stock.WarnDaysBeforeBest', N'90', '2023-01-02T10:06:00.200'),
    (N'Export.Folder', N'\\quay01\export', '2023-01-02T10:07:00.900'),
    (N'Orders.FreeFreightFrom', N'75.00', '2023-01-02T10:08:00.600'),
    (N'Theme', NULL, '2023-01-02T10:09:00.300');
GO

INSERT INTO sales.Customer (CustomerNo, Name, ContactName, Street, PostalCode, City, CountryCode, Phone, FaxNumber, Email,
    CreditLimit, CustomerSince, IsActive) VALUES
    (1000, N'Café Sperl & Söhne', N'Anna Sperling', N'Gumpendorfer Straße 11', '1060', N'Wien', 'AT', N'+43 1 586 41 58', NULL, 'einkauf@sperl-soehne.example', 1500.00, '2009-03-02', 1),
    (1005, N'Teehaus am Markt', N'Jörg Weiß', N'Marktstraße 4', '28195', N'Bremen', 'DE', N'+49 421 32 10 22', NULL, 'teehaus@am-markt.example', 2500.00, '2006-11-20', 1),
    (1010, N'Hotel Vier Linden', N'Frau Krüger', N'Lindenallee 1', '23552', N'Lübeck', 'DE', N'+49 451 7 60 10', N'+49 451 7 60 19', NULL, 4000.00, '2004-05-14', 1),
    (1015, N'Épicerie du Port', N'Mathilde Roux', N'12, quai des Brumes', '76600', N'Le Havre', 'FR', N'+33 2 35 42 10 09', NULL, 'bonjour@epicerieduport.example', 1200.00, '2013-09-09', 1),
    (1020, N'De Theekast', N'Pieter van Aalst', N'Oude Gracht 210', '3511 NR', N'Utrecht', 'NL', N'+31 30 231 88 40', NULL, 'info@theekast.example', 1800.00, '2010-01-18', 1),
    (1025, N'Čajovna Dobrý list', N'Petr Novák', N'Husova 8', '602 00', N'Brno', 'CZ', N'+420 542 211 099', NULL, 'dobry@list.example', 800.00, '2015-04-27', 1),
    (1030, N'Herbaciarnia Pod Złotym Liściem', N'Zofia Łuczak', N'ul. Świętojańska 23', '80-840', N'Gdańsk', 'PL', N'+48 58 301 77 21', NULL, 'zamowienia@zlotylisc.example', 900.00, '2016-02-10', 1),
    (1035, N'O''Malley''s Fine Foods', N'Brian O''Malley', N'4 Harbour Row', NULL, N'København', 'DK', N'+45 33 12 40 77', NULL, 'brian@omalleys.example', 1000.00, '2018-06-01', 1),
    (1040, N'Restaurant Ζορμπάς', N'Νίκος Παππάς', N'Ermou 31', '105 63', N'Athína', 'GR', N'+30 210 322 5005', NULL, NULL, 600.00, '2019-10-12', 1),
    (1045, N'Bottega del Tè', N'Chiara Ferri', N'Via San Vitale 40', '40125', N'Bologna', 'IT', N'+39 051 22 48 10', NULL, 'chiara@bottegadelte.example', 1600.00, '2011-08-30', 1),
    (1050, N'Grand Hôtel Léman', N'Réception', N'Quai du Mont-Blanc 7', '1201', N'Genève', 'CH', N'+41 22 906 60 60', N'+41 22 906 60 61', 'achats@grandhotel-leman.example', 6000.00, '2005-02-21', 1),
    (1055, N'Tehandeln Sju Öar', N'Åsa Lindqvist', N'Skeppargatan 7', '114 52', N'Stockholm', 'SE', N'+46 8 660 12 30', NULL, 'asa@sjuoar.example', 1400.00, '2014-11-03', 1),
    (1060, N'Mercado de la Ribera', N'Iker Etxeberria', N'Erribera kalea 2', '48005', N'Bilbao', 'ES', N'+34 944 15 20 11', NULL, 'pedidos@laribera.example', 700.00, '2017-07-19', 1),
    (1065, N'Lisboa Gourmet, Lda.', N'Teresa Moura', N'Rua Augusta 128', '1100-053', N'Lisboa', 'PT', N'+351 21 342 7788', NULL, 'compras@lisboagourmet.example', 1100.00, '2012-12-05', 1),
    (1070, N'Kőleves Teaház', N'Nagy Gábor', N'Kazinczy utca 41', '1075', N'Budapest', 'HU', N'+36 1 322 1011', NULL, 'rendeles@koleves.example', 500.00, '2020-01-15', 1),
    (1075, N'Chocolaterie Delvaux', N'Luc Delvaux', N'Rue au Beurre 31', '1000', N'Bruxelles', 'BE', N'+32 2 512 34 23', NULL, 'luc@delvaux-choc.example', 2000.00, '2008-10-10', 1),
    (1080, N'Yoga Studio Ruhepol', N'Meike Harms', N'Am Dobben 88', '28203', N'Bremen', 'DE', NULL, NULL, 'meike@ruhepol.example', 250.00, '2021-03-30', 1),
    (1085, N'Feinkost Butterblum', N'Heinz Butterblum', N'Ostertorsteinweg 55', '28203', N'Bremen', 'DE', N'+49 421 70 30 01', NULL, 'laden@butterblum.example', 1500.00, '2007-04-16', 1),
    (1090, N'Seniorenstift Weserblick', N'Küche', N'Osterdeich 140', '28205', N'Bremen', 'DE', N'+49 421 49 90 0', N'+49 421 49 90 11', NULL, 1000.00, '2010-09-01', 1),
    (1095, N'Kochschule Pfefferkorn', N'Silke Dorn', N'Schanzenstraße 75', '20357', N'Hamburg', 'DE', N'+49 40 430 21 77', NULL, 'silke@pfefferkorn.example', 900.00, '2016-05-23', 1),
    (1100, N'Gewürzkontor Speicherstadt', N'H. Petersen', N'Am Sandtorkai 32', '20457', N'Hamburg', 'DE', N'+49 40 36 79 89', NULL, 'kontor@speicherstadt.example', 5000.00, '2003-01-07', 1),
    (1105, N'Das Backhaus GmbH & Co. KG', N'Einkauf', N'Industriestraße 19', '26121', N'Oldenburg', 'DE', N'+49 441 98 12 00', NULL, 'einkauf@backhaus.example', 3500.00, '2009-06-15', 1),
    (1110, N'Buchhandlung Storm', N'Theo Storm', N'Wasserreihe 31', '25813', N'Husum', 'DE', N'+49 4841 29 01', NULL, 'storm@buch.example', 400.00, '2018-10-01', 1),
    (1115, N'Ristorante Da Gino', N'Luigi Conte', N'Corso Italia 9', '34121', N'Trieste', 'IT', N'+39 040 36 12 05', NULL, NULL, 600.00, '2014-03-12', 1),
    (1120, N'Teesalon Ostfriesland', N'Wiebke Janssen', N'Große Straße 52', '26721', N'Emden', 'DE', N'+49 4921 2 33 44', NULL, 'wiebke@teesalon.example', 3000.00, '2002-08-26', 1);
INSERT INTO sales.Customer (CustomerNo, Name, ContactName, Street, PostalCode, City, CountryCode, Phone, FaxNumber, Email,
    CreditLimit, CustomerSince, IsActive) VALUES
    (1125, N'Galerie Weißraum', N'Nora Falk', N'Fedelhören 12', '28203', N'Bremen', 'DE', NULL, NULL, 'post@weissraum.example', 200.00, '2019-02-14', 0),
    (1130, N'Café Zeitlos', N'Emre Yıldız', N'Bergmannstraße 60', '10961', N'Berlin', 'DE', N'+49 30 694 55 10', NULL, 'emre@zeitlos.example', 1000.00, '2017-09-04', 1),
    (1135, N'Klosterladen St. Ansgar', N'Br. Benedikt', NULL, '21682', N'Stade', 'DE', N'+49 4141 40 30', NULL, 'laden@ansgar.example', 800.00, '2011-11-11', 1),
    (1140, N'Maison Thévenot', N'Claire Thévenot', N'5, rue des Halles', '69002', N'Lyon', 'FR', N'+33 4 78 37 19 20', NULL, 'claire@thevenot.example', 1700.00, '2012-05-07', 1),
    (1145, N'De Kruidentuin', N'Sanne de Wit', N'Vismarkt 14', '9711 KV', N'Groningen', 'NL', N'+31 50 312 90 07', NULL, 'sanne@kruidentuin.example', 900.00, '2020-06-22', 1),
    (1150, N'Bar Pastís', N'Joan Ferrer', N'Carrer de Santa Mònica 4', '08001', N'Barcelona', 'ES', NULL, NULL, NULL, 300.00, '2015-10-29', 0),
    (1155, N'Konditorei Sahneschnitte', N'Irmgard Bolte', N'Hauptstraße 3', '27726', N'Worpswede', 'DE', N'+49 4792 12 45', N'+49 4792 12 46', NULL, 700.00, '2008-07-07', 1),
    (1160, N'Tea & More "Pod Orlem"', N'Marek Wójcik', N'Rynek 17', '31-008', N'Kraków', 'PL', N'+48 12 421 05 60', NULL, 'marek@podorlem.example', 600.00, '2021-08-16', 1),
    (1165, N'Nordlys Kaffe & Te', N'Mette Holm', N'Vestergade 58', '8000', N'Aarhus', 'DK', N'+45 86 12 45 90', NULL, 'mette@nordlys.example', 1200.00, '2013-01-28', 1),
    (1170, N'Theodor Abt, Zuckerbäcker', N'Theodor Abt', N'Getreidegasse 21', '5020', N'Salzburg', 'AT', N'+43 662 84 11 50', NULL, 'abt@zuckerbaecker.example', 1300.00, '2010-04-19', 1);
GO

SET IDENTITY_INSERT dbo.FaxQueue ON;
INSERT INTO dbo.FaxQueue (FaxId, CustomerNo, ReceivedAt, Pages, Scan, Handled) VALUES
    (1, 1010, '2023-02-14T09:12:00', 1, 0x49492A00, 1),
    (2, 1050, '2023-03-03T16:40:00', 2, NULL, 1),
    (3, 1010, '2023-05-19T08:05:00', 1, NULL, 1),
    (4, 1090, '2023-08-30T11:31:00', 3, 0x49492A0008000000, 0),
    (5, 1155, '2023-09-01T10:00:00', 1, NULL, 0);
SET IDENTITY_INSERT dbo.FaxQueue OFF;
GO

SET IDENTITY_INSERT sales.SalesOrder ON;
INSERT INTO sales.SalesOrder (OrderNo, CustomerNo, OrderDate, RequiredDate, ShippedOn, Status, Freight, Remarks) VALUES
    (5001, 1165, '2023-01-10 16:01:15', NULL, '2023-01-11', 'S', 4.90, N'Livrer à l''arrière'),
    (5002, 1030, '2023-01-11 08:00:00', '2023-01-25', '2023-01-19', 'S', 6.90, NULL),
    (5003, 1060, '2023-01-13 16:43:45', NULL, '2023-01-17', 'S', 4.90, NULL),
    (5004, 1030, '2023-01-16 11:32:30', '2023-01-26', '2023-01-21', 'S', 0, NULL),
    (5005, 1005, '2023-01-23 11:43:00', '2023-01-30', '2023-01-25', 'S', 12.50, NULL),
    (5006, 1070, '2023-01-24 09:19:30', '2023-02-03', '2023-01-26', 'S', 4.90, NULL),
    (5007, 1000, '2023-01-30 17:02:00', NULL, '2023-02-07', 'S', 4.90, NULL),
    (5008, 1120, '2023-01-31 14:05:15', NULL, '2023-02-05', 'S', 12.50, NULL),
    (5009, 1115, '2023-02-06 10:06:15', NULL, '2023-02-14', 'S', 6.90, NULL),
    (5010, 1170, '2023-02-10 12:56:15', '2023-02-15', '2023-02-13', 'S', 0, NULL),
    (5011, 1095, '2023-02-14 11:22:15', '2023-02-21', '2023-02-21', 'S', 0, NULL),
    (5012, 1015, '2023-02-15 16:18:00', '2023-02-22', '2023-02-23', 'S', 4.90, NULL),
    (5013, 1100, '2023-02-21 14:43:15', '2023-03-07', '2023-02-23', 'S', 12.50, NULL),
    (5014, 1040, '2023-02-28 13:19:45', '2023-03-10', '2023-03-04', 'S', 6.90, NULL),
    (5015, 1090, '2023-03-02 13:19:30', NULL, '2023-03-03', 'S', 6.90, NULL),
    (5016, 1130, '2023-03-07 13:04:00', '2023-03-12', '2023-03-15', 'S', 4.90, NULL),
    (5017, 1105, '2023-03-08 09:42:30', '2023-03-18', '2023-03-14', 'S', 4.90, NULL),
    (5018, 1020, '2023-03-14 13:54:30', NULL, '2023-03-17', 'S', 0, N'Ring twice'),
    (5019, 1045, '2023-03-15 11:09:30', '2023-03-22', '2023-03-22', 'S', 6.90, NULL),
    (5020, 1120, '2023-03-16 09:54:00', '2023-03-23', '2023-03-24', 'S', 0, NULL),
    (5021, 1015, '2023-03-17 15:44:00', NULL, '2023-03-20', 'S', 6.90, NULL),
    (5022, 1050, '2023-03-20 13:52:00', '2023-03-27', '2023-03-21', 'S', 0, NULL),
    (5023, 1030, '2023-03-27 13:15:30', '2023-04-03', '2023-03-30', 'S', 0, NULL),
    (5024, 1055, '2023-03-29 12:49:15', NULL, '2023-03-31', 'S', 6.90, N'Livrer à l''arrière'),
    (5025, 1145, '2023-03-31 11:11:00', '2023-04-10', '2023-04-05', 'S', 0, NULL);
INSERT INTO sales.SalesOrder (OrderNo, CustomerNo, OrderDate, RequiredDate, ShippedOn, Status, Freight, Remarks) VALUES
    (5026, 1140, '2023-04-05 08:50:30', NULL, '2023-04-12', 'S', 4.90, NULL),
    (5027, 1065, '2023-04-06 15:13:00', NULL, '2023-04-14', 'S', 4.90, NULL),
    (5028, 1045, '2023-04-10 12:28:15', '2023-04-24', '2023-04-14', 'S', 4.90, NULL),
    (5029, 1070, '2023-04-12 17:16:00', '2023-04-22', '2023-04-18', 'S', 4.90, NULL),
    (5030, 1015, '2023-04-13 10:53:15', '2023-04-27', '2023-04-15', 'S', 12.50, NULL),
    (5031, 1140, '2023-04-14 09:09:45', '2023-04-19', '2023-04-15', 'S', 6.90, NULL),
    (5032, 1165, '2023-04-18 08:38:00', '2023-04-28', '2023-04-23', 'S', 6.90, NULL),
    (5033, 1060, '2023-04-19 10:25:00', NULL, '2023-04-23', 'S', 0, NULL),
    (5034, 1115, '2023-04-24 12:16:00', '2023-05-08', '2023-04-29', 'S', 4.90, NULL),
    (5035, 1160, '2023-04-28 08:03:45', NULL, '2023-05-01', 'S', 6.90, NULL),
    (5036, 1130, '2023-05-02 09:27:45', '2023-05-09', '2023-05-07', 'S', 4.90, NULL),
    (5037, 1065, '2023-05-03 08:01:00', NULL, '2023-05-07', 'S', 12.50, NULL),
    (5038, 1120, '2023-05-04 15:03:30', '2023-05-09', '2023-05-06', 'S', 4.90, NULL),
    (5039, 1115, '2023-05-08 09:30:00', '2023-05-22', '2023-05-10', 'S', 6.90, NULL),
    (5040, 1060, '2023-05-12 09:33:45', NULL, '2023-05-17', 'S', 4.90, NULL),
    (5041, 1140, '2023-05-15 13:17:30', '2023-05-22', '2023-05-23', 'S', 4.90, NULL),
    (5042, 1080, '2023-05-22 08:43:15', '2023-06-05', '2023-05-24', 'S', 4.90, NULL),
    (5043, 1135, '2023-05-24 14:40:30', NULL, '2023-06-01', 'S', 12.50, NULL),
    (5044, 1145, '2023-05-29 08:37:00', '2023-06-03', '2023-06-02', 'S', 6.90, N'Ring twice'),
    (5045, 1090, '2023-05-30 12:53:15', '2023-06-09', NULL, 'X', 6.90, NULL),
    (5046, 1115, '2023-06-02 10:06:30', '2023-06-07', '2023-06-03', 'S', 4.90, NULL),
    (5047, 1155, '2023-06-05 15:33:30', NULL, '2023-06-13', 'S', 0, N'Livrer à l''arrière'),
    (5048, 1095, '2023-06-12 15:09:00', '2023-06-22', '2023-06-17', 'S', 4.90, NULL),
    (5049, 1130, '2023-06-15 14:50:00', '2023-06-20', '2023-06-23', 'S', 0, NULL),
    (5050, 1160, '2023-06-16 11:53:00', '2023-06-23', NULL, 'X', 6.90, NULL);
INSERT INTO sales.SalesOrder (OrderNo, CustomerNo, OrderDate, RequiredDate, ShippedOn, Status, Freight, Remarks) VALUES
    (5051, 1080, '2023-06-21 10:54:30', '2023-06-28', '2023-06-28', 'S', 4.90, NULL),
    (5052, 1165, '2023-06-26 08:46:45', '2023-07-06', '2023-06-30', 'S', 4.90, NULL),
    (5053, 1020, '2023-07-03 13:17:15', NULL, '2023-07-04', 'S', 12.50, N'Ohne Rechnung im Paket'),
    (5054, 1130, '2023-07-04 15:23:15', '2023-07-09', '2023-07-06', 'S', 4.90, NULL),
    (5055, 1020, '2023-07-05 10:42:30', '2023-07-19', '2023-07-10', 'S', 0, NULL),
    (5056, 1080, '2023-07-10 09:15:00', '2023-07-24', '2023-07-17', 'S', 4.90, NULL),
    (5057, 1165, '2023-07-11 08:11:30', NULL, NULL, 'X', 4.90, NULL),
    (5058, 1025, '2023-07-14 14:17:00', '2023-07-24', '2023-07-15', 'S', 12.50, NULL),
    (5059, 1030, '2023-07-17 15:59:00', NULL, '2023-07-20', 'S', 6.90, NULL),
    (5060, 1145, '2023-07-18 12:34:00', NULL, '2023-07-20', 'S', 6.90, NULL),
    (5061, 1005, '2023-07-21 08:24:30', '2023-08-04', NULL, 'X', 0, NULL),
    (5062, 1030, '2023-07-25 08:06:30', '2023-07-30', '2023-08-01', 'S', 12.50, NULL),
    (5063, 1020, '2023-08-01 09:03:45', '2023-08-06', '2023-08-02', 'S', 12.50, NULL),
    (5064, 1000, '2023-08-08 09:08:00', NULL, '2023-08-10', 'S', 0, N'Ring twice'),
    (5065, 1020, '2023-08-11 10:15:00', '2023-08-18', '2023-08-15', 'S', 12.50, NULL),
    (5066, 1095, '2023-08-15 17:11:30', '2023-08-20', '2023-08-22', 'S', 4.90, NULL),
    (5067, 1035, '2023-08-22 11:13:00', '2023-08-29', '2023-08-29', 'S', 6.90, NULL),
    (5068, 1130, '2023-08-25 11:57:00', '2023-09-08', '2023-08-29', 'S', 4.90, NULL),
    (5069, 1085, '2023-08-28 15:00:45', '2023-09-04', '2023-08-31', 'S', 12.50, NULL),
    (5070, 1010, '2023-09-04 17:43:30', '2023-09-14', '2023-09-06', 'S', 6.90, NULL),
    (5071, 1105, '2023-09-05 15:12:30', '2023-09-10', '2023-09-09', 'S', 6.90, NULL),
    (5072, 1000, '2023-09-08 09:28:45', '2023-09-22', '2023-09-09', 'S', 0, NULL),
    (5073, 1100, '2023-09-11 16:44:00', '2023-09-25', NULL, 'X', 4.90, NULL),
    (5074, 1100, '2023-09-15 15:05:00', '2023-09-25', '2023-09-20', 'S', 4.90, NULL),
    (5075, 1115, '2023-09-18 13:52:45', '2023-09-23', '2023-09-23', 'S', 0, NULL);
INSERT INTO sales.SalesOrder (OrderNo, CustomerNo, OrderDate, RequiredDate, ShippedOn, Status, Freight, Remarks) VALUES
    (5076, 1010, '2023-09-25 15:38:00', '2023-10-02', '2023-09-30', 'S', 6.90, NULL),
    (5077, 1095, '2023-09-27 10:56:45', '2023-10-02', '2023-10-03', 'S', 4.90, NULL),
    (5078, 1155, '2023-09-29 10:50:00', '2023-10-09', '2023-10-05', 'S', 0, NULL),
    (5079, 1090, '2023-10-03 14:29:15', '2023-10-08', '2023-10-10', 'S', 6.90, NULL),
    (5080, 1105, '2023-10-05 16:20:00', '2023-10-12', '2023-10-07', 'S', 4.90, NULL),
    (5081, 1030, '2023-10-10 11:10:00', '2023-10-20', '2023-10-13', 'S', 4.90, NULL),
    (5082, 1085, '2023-10-13 09:20:00', '2023-10-18', '2023-10-14', 'S', 4.90, NULL),
    (5083, 1165, '2023-10-17 13:33:30', '2023-10-27', '2023-10-20', 'S', 4.90, NULL),
    (5084, 1140, '2023-10-18 17:37:45', NULL, '2023-10-23', 'S', 6.90, NULL),
    (5085, 1070, '2023-10-19 16:06:45', '2023-11-02', '2023-10-24', 'S', 4.90, NULL),
    (5086, 1155, '2023-10-24 12:04:30', NULL, '2023-10-28', 'S', 0, NULL),
    (5087, 1100, '2023-10-31 08:33:45', '2023-11-05', '2023-11-01', 'S', 4.90, NULL),
    (5088, 1025, '2023-11-06 13:35:45', NULL, NULL, 'P', 4.90, NULL),
    (5089, 1035, '2023-11-09 13:58:00', NULL, NULL, 'P', 6.90, NULL),
    (5090, 1075, '2023-11-14 17:41:45', NULL, NULL, 'P', 4.90, NULL),
    (5091, 1105, '2023-11-20 14:55:15', '2023-11-30', NULL, 'P', 0, NULL),
    (5092, 1115, '2023-11-21 15:08:15', '2023-12-05', NULL, 'P', 4.90, NULL),
    (5093, 1080, '2023-11-22 15:00:45', '2023-12-02', NULL, 'N', 6.90, NULL),
    (5094, 1115, '2023-11-24 11:56:30', '2023-11-29', NULL, 'N', 6.90, NULL),
    (5095, 1055, '2023-11-29 11:32:00', '2023-12-13', NULL, 'N', 6.90, NULL),
    (5096, 1065, '2023-12-01 17:35:00', NULL, NULL, 'N', 6.90, NULL);
SET IDENTITY_INSERT sales.SalesOrder OFF;
GO

INSERT INTO sales.OrderLine (OrderNo, [LineNo], ProductId, Quantity, UnitPrice, DiscountPct) VALUES
    (5001, 1, 22, 3, 4.20, 0),
    (5001, 2, 45, 10, 19.00, 0),
    (5001, 3, 35, 12, 3.60, 0),
    (5001, 4, 20, 2, 11.90, 10),
    (5002, 1, 8, 3, 8.40, 2.5),
    (5002, 2, 16, 5, 13.40, 0),
    (5002, 3, 7, 2, 9.80, 0),
    (5003, 1, 39, 12, 5.90, 0),
    (5003, 2, 20, 5, 11.90, 10),
    (5003, 3, 38, 20, 5.40, 10),
    (5003, 4, 22, 2, 4.20, 0),
    (5003, 5, 27, 1, 5.90, 5),
    (5004, 1, 5, 10, 12.40, 2.5),
    (5004, 2, 36, 6, 3.80, 2.5),
    (5005, 1, 33, 2, 8.90, 0),
    (5005, 2, 30, 2, 7.40, 10),
    (5005, 3, 44, 12, 3.20, 5),
    (5006, 1, 37, 12, 2.90, 2.5),
    (5006, 2, 30, 2, 7.40, 0),
    (5006, 3, 22, 3, 4.20, 5),
    (5006, 4, 4, 1, 5.80, 0),
    (5007, 1, 33, 12, 8.90, 10),
    (5007, 2, 5, 3, 12.40, 0),
    (5007, 3, 44, 2, 3.20, 0),
    (5007, 4, 36, 20, 3.80, 0),
    (5008, 1, 29, 3, 4.80, 10),
    (5008, 2, 28, 20, 24.50, 0),
    (5008, 3, 34, 12, 26.00, 5),
    (5009, 1, 32, 2, 44.00, 0),
    (5009, 2, 19, 3, 16.90, 0),
    (5010, 1, 33, 5, 8.90, 2.5),
    (5010, 2, 36, 6, 3.80, 5),
    (5010, 3, 10, 1, 10.90, 5),
    (5011, 1, 39, 3, 5.90, 0),
    (5011, 2, 44, 1, 3.20, 0),
    (5011, 3, 30, 1, 7.40, 0),
    (5012, 1, 35, 12, 3.60, 0),
    (5012, 2, 38, 12, 5.40, 5),
    (5013, 1, 29, 3, 4.80, 2.5),
    (5013, 2, 35, 12, 3.60, 0),
    (5013, 3, 6, 20, 7.20, 0),
    (5014, 1, 24, 12, 3.90, 2.5),
    (5015, 1, 34, 12, 26.00, 2.5),
    (5015, 2, 2, 5, 14.90, 0),
    (5015, 3, 37, 3, 2.90, 0),
    (5015, 4, 16, 20, 13.40, 0),
    (5016, 1, 12, 2, 11.20, 0),
    (5016, 2, 39, 12, 5.90, 0),
    (5016, 3, 18, 10, 12.60, 0),
    (5017, 1, 17, 1, 4.90, 0);
INSERT INTO sales.OrderLine (OrderNo, [LineNo], ProductId, Quantity, UnitPrice, DiscountPct) VALUES
    (5017, 2, 3, 10, 11.50, 5),
    (5018, 1, 41, 6, 4.50, 0),
    (5018, 2, 44, 12, 3.20, 0),
    (5018, 3, 25, 5, 6.20, 0),
    (5018, 4, 33, 10, 8.90, 0),
    (5018, 5, 13, 20, 18.50, 0),
    (5019, 1, 33, 3, 8.90, 10),
    (5019, 2, 14, 10, 21.00, 10),
    (5019, 3, 24, 1, 3.90, 0),
    (5020, 1, 37, 6, 2.90, 0),
    (5020, 2, 36, 5, 3.80, 5),
    (5020, 3, 23, 10, 4.60, 0),
    (5020, 4, 28, 10, 24.50, 0),
    (5020, 5, 42, 6, 48.00, 2.5),
    (5021, 1, 29, 20, 4.80, 5),
    (5021, 2, 1, 3, 6.90, 2.5),
    (5021, 3, 9, 3, 6.40, 2.5),
    (5021, 4, 44, 20, 3.20, 0),
    (5021, 5, 22, 6, 4.20, 10),
    (5022, 1, 37, 10, 2.90, 2.5),
    (5022, 2, 25, 20, 6.20, 0),
    (5022, 3, 13, 5, 18.50, 10),
    (5023, 1, 17, 1, 4.90, 0),
    (5023, 2, 19, 6, 16.90, 2.5),
    (5023, 3, 34, 6, 26.00, 10),
    (5024, 1, 33, 20, 8.90, 0),
    (5025, 1, 4, 5, 5.80, 0),
    (5026, 1, 13, 12, 18.50, 5),
    (5026, 2, 3, 12, 11.50, 0),
    (5026, 3, 37, 2, 2.90, 10),
    (5027, 1, 8, 12, 8.40, 5),
    (5027, 2, 7, 1, 9.80, 0),
    (5027, 3, 29, 6, 4.80, 0),
    (5028, 1, 22, 1, 4.20, 2.5),
    (5029, 1, 23, 10, 4.60, 0),
    (5029, 2, 41, 6, 4.50, 0),
    (5029, 3, 11, 1, 12.80, 2.5),
    (5029, 4, 42, 2, 48.00, 0),
    (5029, 5, 7, 5, 9.80, 5),
    (5030, 1, 35, 10, 3.60, 0),
    (5030, 2, 41, 1, 4.50, 0),
    (5031, 1, 9, 5, 6.40, 0),
    (5032, 1, 5, 5, 12.40, 0),
    (5033, 1, 35, 10, 3.60, 0),
    (5034, 1, 21, 1, 3.40, 2.5),
    (5035, 1, 34, 20, 26.00, 0),
    (5035, 2, 16, 5, 13.40, 2.5),
    (5036, 1, 18, 20, 12.60, 10),
    (5036, 2, 27, 3, 5.90, 0),
    (5036, 3, 22, 1, 4.20, 10);
INSERT INTO sales.OrderLine (OrderNo, [LineNo], ProductId, Quantity, UnitPrice, DiscountPct) VALUES
    (5036, 4, 41, 12, 4.50, 5),
    (5036, 5, 36, 2, 3.80, 0),
    (5037, 1, 24, 5, 3.90, 2.5),
    (5037, 2, 5, 1, 12.40, 0),
    (5037, 3, 36, 10, 3.80, 0),
    (5038, 1, 5, 12, 12.40, 2.5),
    (5038, 2, 38, 2, 5.40, 2.5),
    (5038, 3, 24, 12, 3.90, 0),
    (5039, 1, 11, 3, 12.80, 0),
    (5039, 2, 43, 3, 7.50, 0),
    (5040, 1, 13, 5, 18.50, 0),
    (5040, 2, 7, 1, 9.80, 2.5),
    (5040, 3, 2, 20, 14.90, 0),
    (5041, 1, 22, 10, 4.20, 0),
    (5041, 2, 28, 1, 24.50, 2.5),
    (5042, 1, 7, 1, 9.80, 0),
    (5043, 1, 17, 20, 4.90, 10),
    (5043, 2, 25, 2, 6.20, 0),
    (5043, 3, 33, 2, 8.90, 0),
    (5044, 1, 11, 6, 12.80, 10),
    (5044, 2, 37, 2, 2.90, 0),
    (5044, 3, 32, 6, 44.00, 2.5),
    (5044, 4, 18, 1, 12.60, 5),
    (5044, 5, 39, 6, 5.90, 0),
    (5045, 1, 33, 3, 8.90, 0),
    (5045, 2, 45, 2, 19.00, 10),
    (5045, 3, 23, 1, 4.60, 0),
    (5046, 1, 37, 6, 2.90, 0),
    (5046, 2, 24, 2, 3.90, 0),
    (5046, 3, 44, 10, 3.20, 10),
    (5047, 1, 21, 3, 3.40, 5),
    (5048, 1, 5, 5, 12.40, 0),
    (5048, 2, 31, 5, 9.90, 0),
    (5048, 3, 29, 5, 4.80, 5),
    (5049, 1, 7, 20, 9.80, 2.5),
    (5049, 2, 45, 1, 19.00, 0),
    (5050, 1, 35, 5, 3.60, 0),
    (5050, 2, 5, 6, 12.40, 0),
    (5050, 3, 25, 1, 6.20, 0),
    (5050, 4, 37, 6, 2.90, 5),
    (5050, 5, 27, 2, 5.90, 0),
    (5051, 1, 29, 2, 4.80, 10),
    (5051, 2, 17, 12, 4.90, 10),
    (5051, 3, 34, 10, 26.00, 0),
    (5051, 4, 44, 20, 3.20, 5),
    (5052, 1, 40, 3, 8.20, 0),
    (5052, 2, 35, 10, 3.60, 0),
    (5052, 3, 41, 10, 4.50, 2.5),
    (5052, 4, 7, 12, 9.80, 5),
    (5052, 5, 18, 6, 12.60, 0);
INSERT INTO sales.OrderLine (OrderNo, [LineNo], ProductId, Quantity, UnitPrice, DiscountPct) VALUES
    (5053, 1, 43, 5, 7.50, 2.5),
    (5053, 2, 15, 12, 7.60, 0),
    (5054, 1, 27, 6, 5.90, 0),
    (5054, 2, 22, 20, 4.20, 0),
    (5054, 3, 21, 2, 3.40, 0),
    (5055, 1, 26, 2, 6.80, 10),
    (5055, 2, 20, 20, 11.90, 0),
    (5055, 3, 21, 3, 3.40, 2.5),
    (5056, 1, 17, 10, 4.90, 0),
    (5056, 2, 45, 10, 19.00, 2.5),
    (5056, 3, 5, 12, 12.40, 2.5),
    (5057, 1, 31, 20, 9.90, 2.5),
    (5058, 1, 17, 12, 4.90, 0),
    (5058, 2, 34, 1, 26.00, 0),
    (5058, 3, 27, 12, 5.90, 5),
    (5059, 1, 29, 10, 4.80, 0),
    (5059, 2, 31, 2, 9.90, 2.5),
    (5059, 3, 18, 10, 12.60, 0),
    (5060, 1, 18, 2, 12.60, 5),
    (5060, 2, 39, 2, 5.90, 0),
    (5061, 1, 10, 6, 10.90, 0),
    (5061, 2, 39, 20, 5.90, 2.5),
    (5062, 1, 10, 1, 10.90, 0),
    (5063, 1, 28, 1, 24.50, 10),
    (5063, 2, 7, 12, 9.80, 0),
    (5063, 3, 2, 20, 14.90, 0),
    (5063, 4, 25, 2, 6.20, 5),
    (5063, 5, 11, 10, 12.80, 0),
    (5064, 1, 32, 3, 44.00, 2.5),
    (5064, 2, 12, 5, 11.20, 10),
    (5065, 1, 3, 5, 11.50, 5),
    (5065, 2, 43, 20, 7.50, 2.5),
    (5065, 3, 40, 20, 8.20, 0),
    (5066, 1, 35, 12, 3.60, 0),
    (5066, 2, 29, 20, 4.80, 5),
    (5066, 3, 23, 6, 4.60, 0),
    (5066, 4, 28, 1, 24.50, 0),
    (5066, 5, 24, 6, 3.90, 10),
    (5067, 1, 18, 6, 12.60, 0),
    (5067, 2, 27, 2, 5.90, 0),
    (5068, 1, 7, 2, 9.80, 0),
    (5068, 2, 13, 12, 18.50, 2.5),
    (5068, 3, 34, 10, 26.00, 0),
    (5069, 1, 44, 10, 3.20, 5),
    (5069, 2, 13, 5, 18.50, 10),
    (5070, 1, 8, 10, 8.40, 5),
    (5070, 2, 43, 2, 7.50, 0),
    (5070, 3, 4, 10, 5.80, 0),
    (5071, 1, 8, 3, 8.40, 0),
    (5072, 1, 4, 12, 5.80, 5);
INSERT INTO sales.OrderLine (OrderNo, [LineNo], ProductId, Quantity, UnitPrice, DiscountPct) VALUES
    (5072, 2, 11, 20, 12.80, 0),
    (5073, 1, 5, 12, 12.40, 2.5),
    (5073, 2, 29, 6, 4.80, 10),
    (5073, 3, 37, 1, 2.90, 10),
    (5074, 1, 45, 1, 19.00, 0),
    (5074, 2, 11, 1, 12.80, 10),
    (5074, 3, 34, 3, 26.00, 0),
    (5075, 1, 32, 1, 44.00, 0),
    (5075, 2, 21, 5, 3.40, 10),
    (5076, 1, 28, 10, 24.50, 5),
    (5076, 2, 45, 2, 19.00, 0),
    (5076, 3, 1, 20, 6.90, 5),
    (5076, 4, 19, 3, 16.90, 10),
    (5077, 1, 34, 1, 26.00, 5),
    (5077, 2, 8, 20, 8.40, 0),
    (5077, 3, 20, 12, 11.90, 5),
    (5077, 4, 37, 10, 2.90, 0),
    (5077, 5, 1, 10, 6.90, 0),
    (5078, 1, 39, 5, 5.90, 0),
    (5078, 2, 12, 1, 11.20, 0),
    (5078, 3, 30, 1, 7.40, 0),
    (5079, 1, 39, 10, 5.90, 10),
    (5079, 2, 38, 20, 5.40, 0),
    (5079, 3, 33, 12, 8.90, 0),
    (5080, 1, 26, 5, 6.80, 5),
    (5080, 2, 15, 2, 7.60, 0),
    (5080, 3, 38, 6, 5.40, 2.5),
    (5081, 1, 1, 1, 6.90, 10),
    (5081, 2, 25, 10, 6.20, 0),
    (5082, 1, 41, 5, 4.50, 0),
    (5082, 2, 43, 6, 7.50, 10),
    (5082, 3, 40, 3, 8.20, 10),
    (5082, 4, 25, 20, 6.20, 5),
    (5083, 1, 10, 20, 10.90, 5),
    (5083, 2, 45, 3, 19.00, 0),
    (5083, 3, 34, 2, 26.00, 0),
    (5083, 4, 18, 20, 12.60, 10),
    (5083, 5, 17, 1, 4.90, 5),
    (5084, 1, 42, 5, 48.00, 5),
    (5084, 2, 9, 2, 6.40, 0),
    (5085, 1, 25, 6, 6.20, 0),
    (5085, 2, 37, 3, 2.90, 0),
    (5085, 3, 35, 6, 3.60, 5),
    (5086, 1, 31, 2, 9.90, 0),
    (5086, 2, 4, 10, 5.80, 5),
    (5086, 3, 29, 5, 4.80, 0),
    (5087, 1, 8, 10, 8.40, 0),
    (5087, 2, 15, 10, 7.60, 2.5),
    (5088, 1, 24, 20, 3.90, 0),
    (5088, 2, 41, 1, 4.50, 10);
INSERT INTO sales.OrderLine (OrderNo, [LineNo], ProductId, Quantity, UnitPrice, DiscountPct) VALUES
    (5089, 1, 40, 12, 8.20, 2.5),
    (5089, 2, 11, 12, 12.80, 2.5),
    (5090, 1, 21, 5, 3.40, 2.5),
    (5090, 2, 22, 10, 4.20, 5),
    (5091, 1, 22, 10, 4.20, 5),
    (5091, 2, 12, 10, 11.20, 5),
    (5091, 3, 35, 10, 3.60, 2.5),
    (5092, 1, 18, 2, 12.60, 10),
    (5092, 2, 15, 10, 7.60, 2.5),
    (5092, 3, 17, 5, 4.90, 0),
    (5092, 4, 35, 20, 3.60, 5),
    (5092, 5, 11, 6, 12.80, 0),
    (5093, 1, 12, 2, 11.20, 0),
    (5093, 2, 9, 20, 6.40, 0),
    (5093, 3, 42, 3, 48.00, 0),
    (5093, 4, 2, 12, 14.90, 0),
    (5094, 1, 3, 20, 11.50, 0),
    (5094, 2, 41, 20, 4.50, 2.5),
    (5094, 3, 21, 2, 3.40, 0),
    (5095, 1, 25, 12, 6.20, 0),
    (5096, 1, 16, 10, 13.40, 10),
    (5096, 2, 19, 2, 16.90, 5),
    (5096, 3, 28, 1, 24.50, 10);
GO

SET IDENTITY_INSERT sales.Payment ON;
INSERT INTO sales.Payment (PaymentId, OrderNo, PaidOn, Amount, Method, Reference) VALUES
    (1, 5001, '2023-02-06', 267.22, 'TRANSFER', NULL),
    (2, 5002, '2023-02-05', 111.17, 'TRANSFER', N'RG 5002/2023'),
    (3, 5003, '2023-02-11', 235.56, 'TRANSFER', N'RG 5003/2023'),
    (4, 5004, '2023-01-27', 143.13, 'CASH', N'RG 5004/2023'),
    (5, 5006, '2023-02-22', 66.50, 'TRANSFER', N'RG 5006/2023'),
    (6, 5008, '2023-02-26', 799.36, 'TRANSFER', N'RG 5008/2023'),
    (7, 5009, '2023-03-04', 138.70, 'TRANSFER', N'RG 5009/2023'),
    (8, 5010, '2023-02-18', 75.40, 'CARD', N'RG 5010/2023'),
    (9, 5011, '2023-03-21', 28.30, 'TRANSFER', NULL),
    (10, 5012, '2023-03-04', 104.76, 'DEBIT', N'RG 5012/2023'),
    (11, 5013, '2023-03-05', 201.24, 'TRANSFER', N'RG 5013/2023'),
    (12, 5014, '2023-03-08', 45.63, 'DEBIT', N'RG 5014/2023'),
    (13, 5015, '2023-03-20', 655.40, 'DEBIT', NULL),
    (14, 5017, '2023-03-25', 114.15, 'TRANSFER', NULL),
    (15, 5018, '2023-03-17', 555.40, 'TRANSFER', NULL),
    (16, 5019, '2023-04-09', 216.93, 'CASH', N'RG 5019/2023'),
    (17, 5020, '2023-04-07', 607.25, 'CASH', N'RG 5020/2023'),
    (18, 5021, '2023-03-28', 216.78, 'TRANSFER', N'RG 5021/2023'),
    (19, 5022, '2023-03-28', 235.53, 'CARD', N'RG 5022/2023'),
    (20, 5024, '2023-04-05', 178.00, 'TRANSFER', NULL),
    (21, 5025, '2023-04-22', 29.00, 'DEBIT', N'RG 5025/2023'),
    (22, 5026, '2023-05-02', 354.12, 'TRANSFER', N'RG 5026/2023'),
    (23, 5027, '2023-04-27', 134.36, 'CARD', NULL),
    (24, 5028, '2023-05-10', 4.09, 'TRANSFER', N'RG 5028/2023'),
    (25, 5029, '2023-05-16', 228.03, 'TRANSFER', N'RG 5029/2023');
INSERT INTO sales.Payment (PaymentId, OrderNo, PaidOn, Amount, Method, Reference) VALUES
    (26, 5030, '2023-05-05', 40.50, 'DEBIT', N'RG 5030/2023'),
    (27, 5031, '2023-05-07', 32.00, 'TRANSFER', N'RG 5031/2023'),
    (28, 5032, '2023-05-21', 62.00, 'TRANSFER', NULL),
    (29, 5033, '2023-04-25', 36.00, 'CARD', N'RG 5033/2023'),
    (30, 5034, '2023-04-29', 3.31, 'CARD', N'RG 5034/2023'),
    (31, 5035, '2023-05-23', 585.33, 'CARD', N'RG 5035/2023'),
    (32, 5036, '2023-05-18', 307.18, 'TRANSFER', N'RG 5036/2023'),
    (33, 5037, '2023-05-20', 69.41, 'TRANSFER', N'RG 5037/2023'),
    (34, 5038, '2023-06-03', 202.41, 'DEBIT', NULL),
    (35, 5039, '2023-06-02', 60.90, 'TRANSFER', NULL),
    (36, 5040, '2023-05-17', 400.06, 'DEBIT', N'RG 5040/2023'),
    (37, 5041, '2023-06-13', 65.89, 'TRANSFER', NULL),
    (38, 5042, '2023-05-25', 9.80, 'TRANSFER', N'RG 5042/2023'),
    (39, 5043, '2023-06-24', 118.40, 'TRANSFER', N'RG 5043/2023'),
    (40, 5044, '2023-06-10', 379.69, 'TRANSFER', NULL),
    (41, 5046, '2023-06-07', 54.00, 'TRANSFER', N'RG 5046/2023'),
    (42, 5047, '2023-07-01', 9.69, 'TRANSFER', N'RG 5047/2023'),
    (43, 5048, '2023-06-28', 134.30, 'TRANSFER', N'RG 5048/2023'),
    (44, 5049, '2023-07-16', 210.10, 'TRANSFER', NULL),
    (45, 5051, '2023-07-20', 382.36, 'TRANSFER', NULL),
    (46, 5052, '2023-07-10', 291.79, 'DEBIT', NULL),
    (47, 5054, '2023-07-16', 126.20, 'TRANSFER', N'RG 5054/2023'),
    (48, 5056, '2023-08-14', 379.33, 'CASH', N'RG 5056/2023'),
    (49, 5058, '2023-07-25', 152.06, 'TRANSFER', NULL),
    (50, 5059, '2023-08-15', 193.31, 'TRANSFER', N'RG 5059/2023');
INSERT INTO sales.Payment (PaymentId, OrderNo, PaidOn, Amount, Method, Reference) VALUES
    (51, 5062, '2023-08-05', 10.90, 'CASH', N'RG 5062/2023'),
    (52, 5063, '2023-08-26', 577.43, 'DEBIT', N'RG 5063/2023'),
    (53, 5064, '2023-08-27', 179.10, 'CARD', N'RG 5064/2023'),
    (54, 5065, '2023-09-08', 364.88, 'CARD', N'RG 5065/2023'),
    (55, 5067, '2023-09-02', 87.40, 'CASH', N'RG 5067/2023'),
    (56, 5068, '2023-09-01', 496.05, 'CASH', NULL),
    (57, 5069, '2023-09-05', 113.65, 'TRANSFER', NULL),
    (58, 5070, '2023-09-15', 152.80, 'DEBIT', N'RG 5070/2023'),
    (59, 5071, '2023-09-17', 25.20, 'TRANSFER', N'RG 5071/2023'),
    (60, 5072, '2023-09-13', 322.12, 'CASH', NULL),
    (61, 5074, '2023-09-21', 108.52, 'CARD', N'RG 5074/2023'),
    (62, 5075, '2023-09-26', 59.30, 'CARD', NULL),
    (63, 5076, '2023-10-06', 447.48, 'DEBIT', NULL),
    (64, 5077, '2023-10-19', 426.36, 'CARD', NULL),
    (65, 5078, '2023-10-06', 48.10, 'CARD', NULL),
    (66, 5079, '2023-10-10', 267.90, 'TRANSFER', N'RG 5079/2023'),
    (67, 5080, '2023-10-21', 79.09, 'TRANSFER', N'RG 5080/2023'),
    (68, 5081, '2023-11-10', 68.21, 'DEBIT', NULL),
    (69, 5082, '2023-10-22', 202.94, 'CASH', N'RG 5082/2023'),
    (70, 5083, '2023-10-20', 547.56, 'TRANSFER', NULL),
    (71, 5084, '2023-11-02', 240.80, 'CASH', N'RG 5084/2023'),
    (72, 5085, '2023-10-24', 66.42, 'CASH', N'RG 5085/2023'),
    (73, 5086, '2023-11-25', 98.90, 'TRANSFER', N'RG 5086/2023'),
    (74, 5087, '2023-11-25', 158.10, 'TRANSFER', N'RG 5087/2023');
SET IDENTITY_INSERT sales.Payment OFF;
GO

INSERT INTO sales.[Price List] (ProductId, ValidFrom, ValidTo, [Net Price], Currency) VALUES
    (1, '2022-01-01', '2022-12-31', 6.40, 'EUR'),
    (1, '2023-01-01', NULL, 6.90, 'EUR'),
    (2, '2023-01-01', NULL, 14.90, 'EUR'),
    (3, '2022-01-01', '2022-12-31', 10.70, 'EUR'),
    (3, '2023-01-01', NULL, 11.50, 'EUR'),
    (4, '2023-01-01', NULL, 5.80, 'EUR'),
    (5, '2022-01-01', '2022-12-31', 11.50, 'EUR'),
    (5, '2023-01-01', NULL, 12.40, 'EUR'),
    (6, '2023-01-01', NULL, 7.20, 'EUR'),
    (7, '2022-01-01', '2022-12-31', 9.10, 'EUR'),
    (7, '2023-01-01', NULL, 9.80, 'EUR'),
    (8, '2023-01-01', NULL, 8.40, 'EUR'),
    (9, '2022-01-01', '2022-12-31', 6.00, 'EUR'),
    (9, '2023-01-01', NULL, 6.40, 'EUR'),
    (10, '2023-01-01', NULL, 10.90, 'EUR'),
    (11, '2022-01-01', '2022-12-31', 11.90, 'EUR'),
    (11, '2023-01-01', NULL, 12.80, 'EUR'),
    (12, '2023-01-01', NULL, 11.20, 'EUR'),
    (13, '2022-01-01', '2022-12-31', 17.20, 'EUR'),
    (13, '2023-01-01', NULL, 18.50, 'EUR'),
    (14, '2023-01-01', NULL, 21.00, 'EUR'),
    (15, '2022-01-01', '2022-12-31', 7.10, 'EUR'),
    (15, '2023-01-01', NULL, 7.60, 'EUR'),
    (16, '2023-01-01', NULL, 13.40, 'EUR'),
    (17, '2022-01-01', '2022-12-31', 4.60, 'EUR');
INSERT INTO sales.[Price List] (ProductId, ValidFrom, ValidTo, [Net Price], Currency) VALUES
    (17, '2023-01-01', NULL, 4.90, 'EUR'),
    (18, '2023-01-01', NULL, 12.60, 'EUR'),
    (19, '2022-01-01', '2022-12-31', 15.70, 'EUR'),
    (19, '2023-01-01', NULL, 16.90, 'EUR'),
    (20, '2023-01-01', NULL, 11.90, 'EUR'),
    (21, '2022-01-01', '2022-12-31', 3.20, 'EUR'),
    (21, '2023-01-01', NULL, 3.40, 'EUR'),
    (22, '2023-01-01', NULL, 4.20, 'EUR'),
    (23, '2022-01-01', '2022-12-31', 4.30, 'EUR'),
    (23, '2023-01-01', NULL, 4.60, 'EUR'),
    (24, '2023-01-01', NULL, 3.90, 'EUR'),
    (25, '2022-01-01', '2022-12-31', 5.80, 'EUR'),
    (25, '2023-01-01', NULL, 6.20, 'EUR'),
    (26, '2023-01-01', NULL, 6.80, 'EUR'),
    (27, '2022-01-01', '2022-12-31', 5.50, 'EUR'),
    (27, '2023-01-01', NULL, 5.90, 'EUR'),
    (28, '2023-01-01', NULL, 24.50, 'EUR'),
    (29, '2022-01-01', '2022-12-31', 4.50, 'EUR'),
    (29, '2023-01-01', NULL, 4.80, 'EUR'),
    (30, '2023-01-01', NULL, 7.40, 'EUR'),
    (31, '2022-01-01', '2022-12-31', 9.20, 'EUR'),
    (31, '2023-01-01', NULL, 9.90, 'EUR'),
    (32, '2023-01-01', NULL, 44.00, 'EUR'),
    (33, '2022-01-01', '2022-12-31', 8.30, 'EUR'),
    (33, '2023-01-01', NULL, 8.90, 'EUR');
INSERT INTO sales.[Price List] (ProductId, ValidFrom, ValidTo, [Net Price], Currency) VALUES
    (34, '2023-01-01', NULL, 26.00, 'EUR'),
    (35, '2022-01-01', '2022-12-31', 3.30, 'EUR'),
    (35, '2023-01-01', NULL, 3.60, 'EUR'),
    (36, '2023-01-01', NULL, 3.80, 'EUR'),
    (37, '2022-01-01', '2022-12-31', 2.70, 'EUR'),
    (37, '2023-01-01', NULL, 2.90, 'EUR'),
    (38, '2023-01-01', NULL, 5.40, 'EUR'),
    (39, '2022-01-01', '2022-12-31', 5.50, 'EUR'),
    (39, '2023-01-01', NULL, 5.90, 'EUR'),
    (40, '2023-01-01', NULL, 8.20, 'EUR'),
    (41, '2022-01-01', '2022-12-31', 4.20, 'EUR'),
    (41, '2023-01-01', NULL, 4.50, 'EUR'),
    (42, '2023-01-01', NULL, 48.00, 'EUR'),
    (43, '2022-01-01', '2022-12-31', 7.00, 'EUR'),
    (43, '2023-01-01', NULL, 7.50, 'EUR'),
    (44, '2023-01-01', NULL, 3.20, 'EUR'),
    (45, '2022-01-01', '2022-12-31', 17.70, 'EUR'),
    (45, '2023-01-01', NULL, 19.00, 'EUR');
GO

INSERT INTO sales.Subscription (SubscriptionId, CustomerNo, ProductId, Tins, StartedOn, CancelledOn, DeliverAt) VALUES
    ('FB0B2919-B437-4064-A0F6-EFF427E73B32', 1110, 13, 1, '2022-01-01', NULL, NULL),
    ('1B52EB8E-F2C1-475C-ADF3-FFBE9E3C05DA', 1040, 15, 3, '2022-06-01', NULL, '08:30:00'),
    ('5FBEF652-69A9-4BDD-A210-6251DD89B1DC', 1075, 16, 2, '2022-03-01', NULL, '14:00:00'),
    ('8C8A5D35-1A98-4BD6-A65B-B1FC6C041410', 1105, 6, 1, '2022-03-01', NULL, '14:00:00'),
    ('0939BFF1-FC34-4B3E-A426-5810B6127B25', 1025, 15, 2, '2022-08-01', NULL, NULL),
    ('B11AAC2C-5399-44D0-A821-5C166DC5B5D9', 1010, 15, 1, '2022-05-01', NULL, NULL),
    ('A37A8649-BCF2-4EEB-A3C4-EA73609638CB', 1065, 9, 1, '2022-07-01', NULL, '08:30:00'),
    ('DAF40652-5F73-4D78-ABCF-209D3658D426', 1095, 12, 1, '2022-12-01', NULL, '08:30:00'),
    ('BA7936D3-5C63-458D-ABC1-2350DE1131D1', 1135, 9, 6, '2022-11-01', NULL, NULL),
    ('BA5E4520-69C8-4B88-AAE7-36C09E9A492B', 1070, 14, 1, '2022-11-01', NULL, '14:00:00'),
    ('8A9E7C56-AA89-491C-A8EE-65CCB8E5F7B1', 1085, 4, 2, '2022-07-01', NULL, '08:30:00'),
    ('0ECB600B-8576-45FE-A891-69C9C441623C', 1080, 16, 2, '2022-02-01', NULL, '08:30:00'),
    ('D27399BF-ECAB-4B6F-A65D-178F2624965B', 1060, 13, 2, '2022-03-01', NULL, NULL),
    ('21E521DC-47CF-4029-A9F6-DC26D15ACB40', 1105, 7, 1, '2022-11-01', NULL, '14:00:00'),
    ('C22E8886-106F-467A-A41B-8A5476681F2F', 1045, 2, 2, '2022-04-01', NULL, '08:30:00'),
    ('588FA8C6-3CDA-44ED-A838-2218EDA991A1', 1115, 7, 1, '2022-04-01', '2023-03-01', '08:30:00'),
    ('17D72A0F-735D-4BE5-A31A-FCD6F37BEE22', 1085, 11, 1, '2022-05-01', NULL, '08:30:00'),
    ('6F476D2E-DDE9-4F7C-AD20-4921FC76D98B', 1045, 4, 6, '2022-05-01', NULL, NULL);
GO

INSERT INTO stock.Warehouse (WarehouseId, Name, City, FloorArea, IsBonded) VALUES
    (1, N'Überseehafen', N'Bremen', 2150.5, 1),
    (2, N'Laden', N'Bremen', 84, 0),
    (3, N'Sandtorkai', N'Hamburg', 610.25, 1);
GO

INSERT INTO stock.PurchaseOrder (PurchaseNo, SupplierId, OrderedOn, ExpectedOn, Currency, Incoterm, Closed) VALUES
    (7301, 160, '2022-11-12', '2023-01-21', 'USD', 'EXW', 1),
    (7302, 100, '2022-11-21', '2023-01-05', 'USD', 'FOB', 1),
    (7303, 140, '2022-12-02', '2023-01-26', 'USD', 'FOB', 1),
    (7304, 110, '2022-12-15', '2023-01-24', 'USD', 'FOB', 1),
    (7305, 140, '2023-01-03', '2023-02-27', 'USD', 'CIF', 1),
    (7306, 160, '2023-01-18', '2023-03-29', 'USD', NULL, 1),
    (7307, 110, '2023-02-04', '2023-03-16', 'USD', 'FOB', 1),
    (7308, 170, '2023-03-03', '2023-04-22', 'EUR', NULL, 1),
    (7309, 160, '2023-03-20', '2023-05-29', 'USD', 'EXW', 1),
    (7310, 180, '2023-04-01', '2023-05-11', 'USD', 'FOB', 1),
    (7311, 160, '2023-04-26', '2023-07-05', 'USD', 'FOB', 1),
    (7312, 100, '2023-05-12', '2023-06-26', 'USD', NULL, 1),
    (7313, 130, '2023-06-06', '2023-08-05', 'USD', 'FOB', 1),
    (7314, 170, '2023-06-21', '2023-08-10', 'EUR', 'EXW', 1),
    (7315, 140, '2023-07-10', '2023-09-03', 'USD', 'CIF', 1),
    (7316, 150, '2023-07-21', '2023-09-04', 'USD', 'FOB', 1),
    (7317, 140, '2023-08-13', '2023-10-07', 'USD', 'FOB', 1),
    (7318, 190, '2023-09-06', '2023-09-26', 'EUR', 'FOB', 1),
    (7319, 110, '2023-09-21', '2023-10-31', 'USD', NULL, 0),
    (7320, 160, '2023-10-18', '2023-12-27', 'USD', 'CIF', 0),
    (7321, 190, '2023-10-30', '2023-11-19', 'EUR', 'EXW', 0),
    (7322, 160, '2023-11-19', '2024-01-28', 'USD', 'FOB', 0);
GO

INSERT INTO stock.PurchaseLine (PurchaseNo, [LineNo], ProductId, Kilos, PriceKilo) VALUES
    (7301, 1, 31, 2.000, 2995.9500),
    (7301, 2, 32, 2.000, 2985.3214),
    (7302, 1, 3, 100.000, 17.4129),
    (7302, 2, 2, 40.000, 13.3218),
    (7303, 1, 20, 25.000, 28.9672),
    (7303, 2, 11, 7.750, 38.6458),
    (7304, 1, 9, 40.000, 21.2289),
    (7305, 1, 20, 100.000, 38.4796),
    (7306, 1, 32, 18.250, 2467.2552),
    (7306, 2, 31, 2.000, 2438.6337),
    (7307, 1, 9, 7.750, 20.2279),
    (7307, 2, 5, 25.000, 13.0883),
    (7308, 1, 33, 18.250, 252.1940),
    (7308, 2, 36, 10.000, 19.0894),
    (7309, 1, 31, 5.500, 3684.0953),
    (7309, 2, 32, 2.000, 2750.1175),
    (7310, 1, 30, 5.500, 18.1705),
    (7310, 2, 29, 5.500, 35.7835),
    (7311, 1, 31, 10.000, 3260.7224),
    (7311, 2, 32, 5.500, 3230.8466),
    (7312, 1, 2, 40.000, 22.0900),
    (7312, 2, 3, 100.000, 10.5095),
    (7313, 1, 17, 100.000, 13.7054),
    (7314, 1, 34, 10.000, 391.0718),
    (7314, 2, 36, 10.000, 22.2697),
    (7315, 1, 20, 100.000, 36.0300),
    (7315, 2, 11, 12.500, 36.7925),
    (7316, 1, 35, 5.500, 9.0541),
    (7317, 1, 20, 25.000, 37.4398),
    (7318, 1, 22, 12.500, 24.0462),
    (7318, 2, 21, 12.500, 15.3992),
    (7318, 3, 39, 5.500, 29.7935),
    (7319, 1, 5, 60.000, 17.5598),
    (7320, 1, 32, 5.500, 2050.0709),
    (7320, 2, 31, 5.500, 2791.3223),
    (7321, 1, 39, 5.500, 23.6644),
    (7321, 2, 22, 60.000, 29.9375),
    (7322, 1, 32, 18.250, 2128.5844),
    (7322, 2, 31, 5.500, 2821.1570);
GO

INSERT INTO stock.Lot (LotNo, PurchaseNo, [LineNo], Garden, HarvestedOn, BestBefore, Certificate) VALUES
    ('L2301-SAF-87', 7301, 1, NULL, '2022-09-01', '2025-01-28', NULL),
    ('L2301-SAF-68', 7301, 2, NULL, '2022-10-09', '2025-01-28', NULL),
    ('L2301-ASB-67', 7302, 1, N'Halmari', NULL, '2025-01-28', NULL),
    ('L2301-ASM-47', 7302, 2, N'Doomni', '2022-10-02', '2025-01-28', NULL),
    ('L2302-NEP-31', 7303, 1, N'Kanyam', '2022-08-05', '2025-02-28', 0x4AF8CD66C6F89492),
    ('L2301-NEP-50', 7303, 2, N'Kanyam', '2022-10-14', '2025-01-28', 0x54AF06E848D406C1),
    ('L2302-EGR-75', 7304, 1, NULL, '2022-09-12', '2025-02-28', NULL),
    ('L2303-NEP-67', 7305, 1, N'Kanyam', '2022-10-20', '2025-03-28', 0x8B02AAFFD16241A8),
    ('L2304-SAF-83', 7306, 1, NULL, '2022-12-09', '2025-04-28', NULL),
    ('L2303-SAF-04', 7306, 2, NULL, '2022-10-22', '2025-03-28', NULL),
    ('L2303-EGR-85', 7307, 1, N'Aislaby', '2022-12-31', '2025-03-28', NULL),
    ('L2303-CEY-07', 7307, 2, NULL, NULL, '2025-03-28', NULL),
    ('L2305-VAN-46', 7308, 1, N'Antalaha', '2023-01-25', '2025-05-28', NULL),
    ('L2305-CLO-74', 7308, 2, N'Antalaha', '2022-12-12', '2025-05-28', NULL),
    ('L2306-SAF-36', 7309, 1, NULL, NULL, '2025-06-28', NULL),
    ('L2306-SAF-05', 7309, 2, NULL, '2022-11-24', '2025-06-28', NULL),
    ('L2305-CIN-02', 7310, 1, NULL, NULL, '2025-05-28', 0xAA2DDF4A8711027D),
    ('L2305-CIN-73', 7310, 2, NULL, '2023-03-02', '2025-05-28', 0x39AE8768276BC0BF),
    ('L2307-SAF-25', 7311, 1, NULL, '2023-02-28', '2025-07-28', NULL),
    ('L2307-SAF-16', 7311, 2, NULL, '2023-02-01', '2025-07-28', NULL),
    ('L2307-ASM-45', 7312, 1, N'Doomni', NULL, '2025-07-28', NULL),
    ('L2307-ASB-73', 7312, 2, N'Halmari', '2023-01-23', '2025-07-28', NULL),
    ('L2308-GUN-20', 7313, 1, N'桐木关', NULL, '2025-08-28', NULL),
    ('L2308-VAN-50', 7314, 1, N'Antalaha', NULL, '2025-08-28', NULL),
    ('L2308-CLO-50', 7314, 2, N'Antalaha', '2023-05-24', '2025-08-28', NULL);
INSERT INTO stock.Lot (LotNo, PurchaseNo, [LineNo], Garden, HarvestedOn, BestBefore, Certificate) VALUES
    ('L2308-NEP-38', 7315, 1, N'Kanyam', NULL, '2025-08-28', 0x499948D535FC31D3),
    ('L2309-NEP-17', 7315, 2, N'Kanyam', NULL, '2025-09-28', 0x9EC0E5FD88FC8642),
    ('L2309-TUR-45', 7316, 1, NULL, '2023-06-21', '2025-09-28', 0xBA6095EE4559E917),
    ('L2310-NEP-54', 7317, 1, N'Kanyam', '2023-05-04', '2025-10-28', 0xBB15D9866EC8E857),
    ('L2309-VER-80', 7318, 1, NULL, NULL, '2025-09-28', 0x4A20E0186DB62FEA),
    ('L2309-MIN-46', 7318, 2, NULL, NULL, '2025-09-28', 0xA323AC799A9B134C),
    ('L2310-RAS-71', 7318, 3, NULL, NULL, '2025-10-28', NULL);
GO

SET IDENTITY_INSERT stock.StockMove ON;
INSERT INTO stock.StockMove (MoveId, MovedAt, LotNo, WarehouseId, Kilos, Kind, OrderNo) VALUES
    (1, '2023-01-10T13:40:30', 'L2301-ASB-67', 2, 100.000, 'IN', NULL),
    (2, '2023-01-10T11:34:00', 'L2301-ASM-47', 2, 40.000, 'IN', NULL),
    (3, '2023-01-22T15:37:00', 'L2301-SAF-87', 1, 2.000, 'IN', NULL),
    (4, '2023-01-29T10:29:00', 'L2301-SAF-68', 2, 2.000, 'IN', NULL),
    (5, '2023-01-30T16:45:00', 'L2301-NEP-50', 1, 7.750, 'IN', NULL),
    (6, '2023-02-02T09:07:00', 'L2302-NEP-31', 1, 25.000, 'IN', NULL),
    (7, '2023-02-02T15:38:00', 'L2302-EGR-75', 2, 40.000, 'IN', NULL),
    (8, '2023-02-06T07:17:00', 'L2302-NEP-31', 1, -5.000, 'TRF', NULL),
    (9, '2023-02-06T11:40:30', 'L2302-NEP-31', 3, 5.000, 'TRF', NULL),
    (10, '2023-02-07T07:51:00', 'L2301-SAF-87', 1, -0.180, 'TRF', NULL),
    (11, '2023-02-07T15:42:30', 'L2301-SAF-87', 3, 0.180, 'TRF', NULL),
    (12, '2023-02-07T16:12:00', 'L2302-EGR-75', 2, -2.000, 'OUT', 5007),
    (13, '2023-02-10T12:46:00', 'L2301-SAF-87', 1, -0.162, 'TRF', NULL),
    (14, '2023-02-10T13:51:00', 'L2301-SAF-87', 3, 0.162, 'TRF', NULL),
    (15, '2023-02-11T09:42:00', 'L2301-SAF-87', 1, -0.200, 'OUT', 5084),
    (16, '2023-02-18T15:29:00', 'L2301-ASM-47', 2, -4.560, 'OUT', 5009),
    (17, '2023-02-19T13:15:00', 'L2302-EGR-75', 2, -6.840, 'TRF', NULL),
    (18, '2023-02-19T16:46:00', 'L2302-EGR-75', 3, 6.840, 'TRF', NULL),
    (19, '2023-02-20T10:46:00', 'L2301-SAF-68', 2, -0.095, 'OUT', 5084),
    (20, '2023-02-20T15:57:00', 'L2301-ASM-47', 2, -10.000, 'OUT', 5020),
    (21, '2023-02-25T08:03:00', 'L2301-NEP-50', 1, -1.550, 'OUT', 5010),
    (22, '2023-03-03T13:24:00', 'L2301-ASB-67', 2, -10.000, 'OUT', 5064),
    (23, '2023-03-10T09:28:30', 'L2301-SAF-68', 2, -0.072, 'TRF', NULL),
    (24, '2023-03-10T14:19:00', 'L2301-SAF-68', 3, 0.072, 'TRF', NULL),
    (25, '2023-03-11T07:11:00', 'L2303-NEP-67', 1, 100.000, 'IN', NULL),
    (26, '2023-03-17T12:58:00', 'L2303-EGR-85', 2, 7.750, 'IN', NULL),
    (27, '2023-03-18T09:44:00', 'L2301-ASM-47', 2, -1.500, 'ADJ', NULL),
    (28, '2023-03-19T11:27:30', 'L2303-CEY-07', 2, 25.000, 'IN', NULL),
    (29, '2023-03-20T15:56:30', 'L2302-EGR-75', 2, -3.800, 'ADJ', NULL),
    (30, '2023-03-22T10:06:30', 'L2301-ASB-67', 2, -22.500, 'ADJ', NULL),
    (31, '2023-03-23T14:38:00', 'L2303-EGR-85', 2, -1.938, 'TRF', NULL),
    (32, '2023-03-23T07:17:30', 'L2303-EGR-85', 3, 1.938, 'TRF', NULL),
    (33, '2023-03-26T08:38:30', 'L2303-SAF-04', 1, 2.000, 'IN', NULL),
    (34, '2023-03-27T07:46:00', 'L2302-NEP-31', 1, -2.000, 'OUT', 5052),
    (35, '2023-03-30T08:54:00', 'L2301-ASM-47', 2, -5.700, 'ADJ', NULL),
    (36, '2023-04-09T08:11:30', 'L2303-SAF-04', 1, -0.450, 'TRF', NULL),
    (37, '2023-04-09T13:27:30', 'L2303-SAF-04', 3, 0.450, 'TRF', NULL),
    (38, '2023-04-10T15:20:30', 'L2304-SAF-83', 1, 18.250, 'IN', NULL),
    (39, '2023-04-11T10:20:30', 'L2303-EGR-85', 2, -0.981, 'TRF', NULL),
    (40, '2023-04-11T16:58:00', 'L2303-EGR-85', 3, 0.981, 'TRF', NULL),
    (41, '2023-04-12T07:18:30', 'L2303-CEY-07', 2, -3.420, 'ADJ', NULL),
    (42, '2023-04-15T14:28:00', 'L2301-NEP-50', 1, -1.550, 'OUT', 5013),
    (43, '2023-04-15T13:41:00', 'L2303-EGR-85', 2, -1.453, 'OUT', 5081),
    (44, '2023-04-16T08:26:00', 'L2303-CEY-07', 2, -2.500, 'TRF', NULL),
    (45, '2023-04-16T09:46:00', 'L2303-CEY-07', 3, 2.500, 'TRF', NULL),
    (46, '2023-04-18T14:56:00', 'L2301-SAF-68', 2, -0.100, 'TRF', NULL),
    (47, '2023-04-18T13:30:00', 'L2301-SAF-68', 3, 0.100, 'TRF', NULL),
    (48, '2023-04-27T13:37:00', 'L2302-NEP-31', 1, -1.800, 'TRF', NULL),
    (49, '2023-04-27T13:45:00', 'L2302-NEP-31', 3, 1.800, 'TRF', NULL),
    (50, '2023-05-02T14:52:00', 'L2305-CLO-74', 1, 10.000, 'IN', NULL);
INSERT INTO stock.StockMove (MoveId, MovedAt, LotNo, WarehouseId, Kilos, Kind, OrderNo) VALUES
    (51, '2023-05-03T09:51:00', 'L2305-VAN-46', 2, 18.250, 'IN', NULL),
    (52, '2023-05-10T16:55:00', 'L2305-CIN-73', 1, 5.500, 'IN', NULL),
    (53, '2023-05-13T15:43:00', 'L2305-VAN-46', 2, -1.318, 'ADJ', NULL),
    (54, '2023-05-14T14:46:00', 'L2301-SAF-87', 1, -0.365, 'OUT', 5069),
    (55, '2023-05-20T07:20:00', 'L2305-CIN-02', 1, 5.500, 'IN', NULL),
    (56, '2023-05-23T15:50:30', 'L2301-SAF-68', 2, -0.361, 'OUT', 5025),
    (57, '2023-05-24T15:26:00', 'L2305-CIN-73', 1, -0.392, 'OUT', 5007),
    (58, '2023-05-28T10:58:00', 'L2305-CIN-73', 1, -0.275, 'OUT', 5036),
    (59, '2023-06-06T09:13:00', 'L2306-SAF-36', 2, 5.500, 'IN', NULL),
    (60, '2023-06-08T13:19:00', 'L2305-VAN-46', 2, -0.730, 'OUT', 5074),
    (61, '2023-06-08T12:32:30', 'L2306-SAF-05', 1, 2.000, 'IN', NULL),
    (62, '2023-06-12T11:00:30', 'L2303-CEY-07', 2, -4.500, 'OUT', 5005),
    (63, '2023-06-16T12:02:00', 'L2303-EGR-85', 2, -0.436, 'OUT', 5023),
    (64, '2023-06-18T08:58:30', 'L2303-SAF-04', 1, -0.200, 'ADJ', NULL),
    (65, '2023-06-21T08:57:00', 'L2303-NEP-67', 1, -6.000, 'ADJ', NULL),
    (66, '2023-06-29T09:00:00', 'L2303-NEP-67', 1, -25.000, 'OUT', 5080),
    (67, '2023-07-01T13:15:00', 'L2303-CEY-07', 2, -0.900, 'OUT', 5020),
    (68, '2023-07-03T15:35:00', 'L2303-NEP-67', 1, -15.000, 'OUT', 5025),
    (69, '2023-07-03T07:06:30', 'L2305-CIN-02', 1, -1.031, 'ADJ', NULL),
    (70, '2023-07-03T09:47:00', 'L2307-ASM-45', 1, 40.000, 'IN', NULL),
    (71, '2023-07-04T09:23:30', 'L2304-SAF-83', 1, -1.825, 'TRF', NULL),
    (72, '2023-07-04T15:15:30', 'L2304-SAF-83', 3, 1.825, 'TRF', NULL),
    (73, '2023-07-04T08:02:00', 'L2305-CLO-74', 1, -2.000, 'TRF', NULL),
    (74, '2023-07-04T09:30:30', 'L2305-CLO-74', 3, 2.000, 'TRF', NULL),
    (75, '2023-07-04T10:25:00', 'L2307-SAF-16', 1, 5.500, 'IN', NULL),
    (76, '2023-07-04T11:51:30', 'L2307-ASB-73', 1, 100.000, 'IN', NULL),
    (77, '2023-07-12T15:53:00', 'L2307-SAF-16', 1, -0.550, 'ADJ', NULL),
    (78, '2023-07-16T08:00:00', 'L2307-SAF-25', 1, 10.000, 'IN', NULL),
    (79, '2023-07-17T14:11:00', 'L2305-CIN-73', 1, -0.353, 'OUT', 5051),
    (80, '2023-07-18T09:50:00', 'L2307-ASB-73', 1, -12.000, 'OUT', 5059),
    (81, '2023-07-27T11:00:00', 'L2305-CIN-02', 1, -0.580, 'TRF', NULL),
    (82, '2023-07-27T10:18:00', 'L2305-CIN-02', 3, 0.580, 'TRF', NULL),
    (83, '2023-08-02T12:58:00', 'L2306-SAF-36', 2, -0.275, 'OUT', 5016),
    (84, '2023-08-03T15:50:00', 'L2306-SAF-05', 1, -0.450, 'TRF', NULL),
    (85, '2023-08-03T14:08:00', 'L2306-SAF-05', 3, 0.450, 'TRF', NULL),
    (86, '2023-08-03T09:13:00', 'L2307-SAF-16', 1, -0.495, 'ADJ', NULL),
    (87, '2023-08-05T09:51:00', 'L2308-GUN-20', 1, 100.000, 'IN', NULL),
    (88, '2023-08-09T15:43:00', 'L2305-CIN-02', 1, -0.774, 'ADJ', NULL),
    (89, '2023-08-10T12:32:30', 'L2307-ASB-73', 1, -20.000, 'OUT', 5016),
    (90, '2023-08-10T07:30:30', 'L2308-VAN-50', 2, 10.000, 'IN', NULL),
    (91, '2023-08-11T16:21:00', 'L2305-VAN-46', 2, -3.650, 'OUT', 5010),
    (92, '2023-08-14T16:21:30', 'L2307-ASM-45', 1, -2.000, 'OUT', 5012),
    (93, '2023-08-14T15:40:30', 'L2308-VAN-50', 2, -0.450, 'ADJ', NULL),
    (94, '2023-08-18T07:19:00', 'L2305-VAN-46', 2, -0.694, 'TRF', NULL),
    (95, '2023-08-18T13:26:00', 'L2305-VAN-46', 3, 0.694, 'TRF', NULL),
    (96, '2023-08-22T09:15:00', 'L2308-CLO-50', 1, 10.000, 'IN', NULL),
    (97, '2023-08-24T09:26:00', 'L2308-GUN-20', 1, -5.000, 'OUT', 5085),
    (98, '2023-08-26T15:16:00', 'L2305-CIN-73', 1, -1.306, 'OUT', 5005),
    (99, '2023-08-28T16:58:00', 'L2305-CIN-02', 1, -1.375, 'OUT', 5075),
    (100, '2023-08-31T10:02:00', 'L2308-NEP-38', 1, 100.000, 'IN', NULL);
INSERT INTO stock.StockMove (MoveId, MovedAt, LotNo, WarehouseId, Kilos, Kind, OrderNo) VALUES
    (101, '2023-09-02T11:52:00', 'L2306-SAF-05', 1, -0.200, 'OUT', 5086),
    (102, '2023-09-03T13:47:00', 'L2308-CLO-50', 1, -0.800, 'OUT', 5072),
    (103, '2023-09-07T11:13:00', 'L2309-NEP-17', 2, 12.500, 'IN', NULL),
    (104, '2023-09-11T11:20:00', 'L2309-TUR-45', 1, 5.500, 'IN', NULL),
    (105, '2023-09-13T15:12:00', 'L2308-CLO-50', 1, -1.800, 'TRF', NULL),
    (106, '2023-09-13T14:26:00', 'L2308-CLO-50', 3, 1.800, 'TRF', NULL),
    (107, '2023-09-14T08:22:00', 'L2307-SAF-16', 1, -0.891, 'OUT', 5010),
    (108, '2023-09-15T16:33:00', 'L2307-ASB-73', 1, -20.000, 'ADJ', NULL),
    (109, '2023-09-29T12:05:00', 'L2309-TUR-45', 1, -0.261, 'TRF', NULL),
    (110, '2023-09-29T11:09:30', 'L2309-TUR-45', 3, 0.261, 'TRF', NULL),
    (111, '2023-09-29T15:35:00', 'L2309-VER-80', 2, 12.500, 'IN', NULL),
    (112, '2023-09-29T11:55:00', 'L2309-MIN-46', 1, 12.500, 'IN', NULL),
    (113, '2023-10-03T07:47:00', 'L2306-SAF-05', 1, -0.135, 'OUT', 5079),
    (114, '2023-10-05T09:55:00', 'L2308-GUN-20', 1, -4.275, 'TRF', NULL),
    (115, '2023-10-05T16:24:30', 'L2308-GUN-20', 3, 4.275, 'TRF', NULL),
    (116, '2023-10-06T08:43:00', 'L2309-VER-80', 2, -0.938, 'TRF', NULL),
    (117, '2023-10-06T07:38:00', 'L2309-VER-80', 3, 0.938, 'TRF', NULL),
    (118, '2023-10-06T15:09:00', 'L2310-RAS-71', 2, 5.500, 'IN', NULL),
    (119, '2023-10-09T11:07:00', 'L2307-SAF-25', 1, -2.500, 'TRF', NULL),
    (120, '2023-10-09T14:16:00', 'L2307-SAF-25', 3, 2.500, 'TRF', NULL),
    (121, '2023-10-15T08:02:00', 'L2310-NEP-54', 1, 25.000, 'IN', NULL),
    (122, '2023-10-19T12:41:00', 'L2308-GUN-20', 1, -9.500, 'OUT', 5041),
    (123, '2023-11-02T14:29:30', 'L2308-NEP-38', 1, -25.000, 'OUT', 5085),
    (124, '2023-11-02T12:56:00', 'L2309-NEP-17', 2, -2.500, 'OUT', 5067),
    (125, '2023-11-05T11:29:00', 'L2307-SAF-25', 1, -0.375, 'TRF', NULL),
    (126, '2023-11-05T14:56:30', 'L2307-SAF-25', 3, 0.375, 'TRF', NULL),
    (127, '2023-11-05T13:26:00', 'L2308-CLO-50', 1, -2.000, 'OUT', 5024),
    (128, '2023-11-05T07:26:00', 'L2309-TUR-45', 1, -0.275, 'OUT', 5082),
    (129, '2023-11-10T11:14:30', 'L2309-VER-80', 2, -3.125, 'TRF', NULL),
    (130, '2023-11-10T15:30:00', 'L2309-VER-80', 3, 3.125, 'TRF', NULL),
    (131, '2023-11-12T07:09:00', 'L2309-NEP-17', 2, -2.000, 'TRF', NULL),
    (132, '2023-11-12T15:58:00', 'L2309-NEP-17', 3, 2.000, 'TRF', NULL),
    (133, '2023-11-27T14:36:00', 'L2308-VAN-50', 2, -1.000, 'TRF', NULL),
    (134, '2023-11-27T07:39:00', 'L2308-VAN-50', 3, 1.000, 'TRF', NULL),
    (135, '2023-12-11T07:18:00', 'L2310-NEP-54', 1, -2.500, 'TRF', NULL),
    (136, '2023-12-11T12:45:30', 'L2310-NEP-54', 3, 2.500, 'TRF', NULL),
    (137, '2023-12-16T07:50:00', 'L2309-MIN-46', 1, -3.125, 'OUT', 5072),
    (138, '2023-12-17T15:27:00', 'L2310-RAS-71', 2, -0.550, 'OUT', 5047),
    (139, '2023-12-21T10:48:00', 'L2309-MIN-46', 1, -0.469, 'OUT', 5039),
    (140, '2023-12-25T12:57:00', 'L2310-RAS-71', 2, -0.447, 'OUT', 5052),
    (141, '2023-12-31T16:21:00', 'L2309-VER-80', 2, -0.422, 'ADJ', NULL),
    (142, '2024-01-05T14:35:00', 'L2310-RAS-71', 2, -0.248, 'OUT', 5085),
    (143, '2024-01-06T14:02:00', 'L2309-MIN-46', 1, -1.781, 'OUT', 5070),
    (144, '2024-01-06T15:52:00', 'L2310-RAS-71', 2, -0.235, 'ADJ', NULL);
SET IDENTITY_INSERT stock.StockMove OFF;
GO

INSERT INTO sales.ChangeLog (LoggedAt, LoggedBy, OrderNo, What) VALUES
    ('2023-02-01T09:15:22.113', N'quay\wiebke', 5003, N'Status N -> P'),
    ('2023-02-02T14:01:07.500', N'quay\wiebke', 5003, N'Status P -> S'),
    ('2023-06-11T08:00:00', N'sa', 5040, N'Freight corrected by hand');
GO

INSERT INTO stock.ChangeLog (LoggedAt, LotNo, What) VALUES
    ('2023-03-15T10:00:00.250', 'L2301-SAF-87', N'Moisture 6.1 %'),
    ('2023-04-02T11:30:00', 'L2301-SAF-68', N'Sample sent to the laboratory');
GO

-----------------------------------------------------------------------------
-- Relationships
-----------------------------------------------------------------------------

ALTER TABLE dbo.Supplier ADD CONSTRAINT FK_Supplier_Country
    FOREIGN KEY (CountryCode) REFERENCES dbo.Country (Code);
ALTER TABLE dbo.Product ADD
    CONSTRAINT FK_Product_Category FOREIGN KEY (CategoryId) REFERENCES dbo.Category (CategoryId),
    CONSTRAINT FK_Product_Supplier FOREIGN KEY (SupplierId) REFERENCES dbo.Supplier (SupplierId),
    CONSTRAINT FK_Product_Country FOREIGN KEY (OriginCountry) REFERENCES dbo.Country (Code);
GO

ALTER TABLE sales.Customer ADD CONSTRAINT FK_Customer_Country
    FOREIGN KEY (CountryCode) REFERENCES dbo.Country (Code);
ALTER TABLE dbo.FaxQueue ADD CONSTRAINT FK_FaxQueue_Customer
    FOREIGN KEY (CustomerNo) REFERENCES sales.Customer (CustomerNo) ON DELETE CASCADE;
ALTER TABLE sales.SalesOrder ADD CONSTRAINT FK_SalesOrder_Customer
    FOREIGN KEY (CustomerNo) REFERENCES sales.Customer (CustomerNo);
ALTER TABLE sales.OrderLine WITH CHECK ADD
    CONSTRAINT FK_OrderLine_SalesOrder FOREIGN KEY (OrderNo) REFERENCES sales.SalesOrder (OrderNo) ON DELETE CASCADE,
    CONSTRAINT FK_OrderLine_Product FOREIGN KEY (ProductId) REFERENCES dbo.Product (ProductId);
ALTER TABLE sales.[Price List] ADD CONSTRAINT [FK_Price List_Product]
    FOREIGN KEY (ProductId) REFERENCES dbo.Product (ProductId);
ALTER TABLE sales.Subscription ADD
    CONSTRAINT FK_Subscription_Customer FOREIGN KEY (CustomerNo) REFERENCES sales.Customer (CustomerNo),
    CONSTRAINT FK_Subscription_Product FOREIGN KEY (ProductId) REFERENCES dbo.Product (ProductId);
ALTER TABLE sales.Payment ADD CONSTRAINT FK_Payment_SalesOrder
    FOREIGN KEY (OrderNo) REFERENCES sales.SalesOrder (OrderNo);
GO

ALTER TABLE stock.PurchaseOrder ADD CONSTRAINT FK_PurchaseOrder_Supplier
    FOREIGN KEY (SupplierId) REFERENCES dbo.Supplier (SupplierId);
ALTER TABLE stock.PurchaseLine ADD
    CONSTRAINT FK_PurchaseLine_PurchaseOrder FOREIGN KEY (PurchaseNo) REFERENCES stock.PurchaseOrder (PurchaseNo),
    CONSTRAINT FK_PurchaseLine_Product FOREIGN KEY (ProductId) REFERENCES dbo.Product (ProductId);
ALTER TABLE stock.Lot ADD CONSTRAINT FK_Lot_PurchaseLine
    FOREIGN KEY (PurchaseNo, [LineNo]) REFERENCES stock.PurchaseLine (PurchaseNo, [LineNo]);
ALTER TABLE stock.StockMove ADD
    CONSTRAINT FK_StockMove_Lot FOREIGN KEY (LotNo) REFERENCES stock.Lot (LotNo),
    CONSTRAINT FK_StockMove_Warehouse FOREIGN KEY (WarehouseId) REFERENCES stock.Warehouse (WarehouseId),
    CONSTRAINT FK_StockMove_SalesOrder FOREIGN KEY (OrderNo) REFERENCES sales.SalesOrder (OrderNo);
GO

-----------------------------------------------------------------------------
-- Secondary indexes
-----------------------------------------------------------------------------

CREATE UNIQUE INDEX UX_Category_Name ON dbo.Category (Name);
CREATE INDEX IX_Supplier_Country ON dbo.Supplier (CountryCode);
CREATE INDEX IX_Product_Category ON dbo.Product (CategoryId, Name);
CREATE INDEX IX_Product_Supplier ON dbo.Product (SupplierId) INCLUDE (Name, ListPrice);
CREATE INDEX IX_Customer_City ON sales.Customer (CountryCode, City);
CREATE INDEX IX_SalesOrder_Customer ON sales.SalesOrder (CustomerNo, OrderDate DESC);
CREATE NONCLUSTERED INDEX IX_OrderLine_Product ON sales.OrderLine (ProductId);
CREATE INDEX IX_Payment_PaidOn ON sales.Payment (PaidOn);
CREATE INDEX IX_Payment_Order ON sales.Payment (OrderNo);
CREATE INDEX IX_StockMove_Lot ON stock.StockMove (LotNo, MovedAt);
CREATE INDEX IX_StockMove_Order ON stock.StockMove (OrderNo) WHERE OrderNo IS NOT NULL;
GO

-----------------------------------------------------------------------------
-- Functions
-----------------------------------------------------------------------------
GO

/* VAT rate in per cent of a product's code: reduced, standard, zero. */
CREATE FUNCTION dbo.fnVatRate (@VatCode char(1))
RETURNS decimal(4, 1)
AS
BEGIN
    RETURN CASE @VatCode
               WHEN 'S' THEN 19.0
               WHEN 'R' THEN 7.0
               ELSE 0.0
           END;
END
GO

CREATE FUNCTION dbo.fnFormatWeight (@Kilos decimal(9, 3))
RETURNS nvarchar(20)
AS
BEGIN
    DECLARE @Text nvarchar(20);

    IF @Kilos IS NULL
        SET @Text = N'';
    ELSE IF @Kilos < 1
        SET @Text = CONVERT(nvarchar(10), CONVERT(int, @Kilos * 1000)) + N' g';
    ELSE
        SET @Text = CONVERT(nvarchar(12), @Kilos) + N' kg';

    RETURN @Text;
END
GO

-- The old eight-character article code that the fax forms print.
CREATE FUNCTION dbo.fnLegacyCode (@Sku varchar(12))
RETURNS char(8)
AS
BEGIN
    RETURN LEFT(REPLACE(@Sku, '-', '') + '00000000', 8);
END
GO

CREATE FUNCTION sales.fnOpenOrdersOf (@CustomerNo int)
RETURNS TABLE
AS
RETURN
(
    SELECT o.OrderNo, o.OrderDate, o.RequiredDate, SUM(l.LineTotal) AS Net
    FROM sales.SalesOrder AS o
        INNER JOIN sales.OrderLine AS l ON l.OrderNo = o.OrderNo
    WHERE o.CustomerNo = @CustomerNo AND o.Status IN ('N', 'P')
    GROUP BY o.OrderNo, o.OrderDate, o.RequiredDate
);
GO

CREATE FUNCTION stock.fnStockCard (@LotNo varchar(16))
RETURNS @Card TABLE
(
    Seq     int IDENTITY(1, 1) PRIMARY KEY,
    MovedAt datetime,
    Kind    char(3),
    Kilos   decimal(9, 3),
    Balance decimal(12, 3)
)
AS
BEGIN
    INSERT INTO @Card (MovedAt, Kind, Kilos, Balance)
    SELECT MovedAt, Kind, Kilos,
           SUM(Kilos) OVER (ORDER BY MovedAt, MoveId ROWS UNBOUNDED PRECEDING)
    FROM stock.StockMove
    WHERE LotNo = @LotNo
    ORDER BY MovedAt, MoveId;

    RETURN;
END
GO

-----------------------------------------------------------------------------
-- Views
-----------------------------------------------------------------------------
GO

CREATE VIEW dbo.vProductCatalog AS
SELECT p.Sku, p.Name, c.Name AS Category, p.ListPrice, p.PricePerKilo,
       p.ListPrice * (1 + dbo.fnVatRate(p.VatCode) / 100) AS GrossPrice
FROM dbo.Product p
    INNER JOIN dbo.Category c ON c.CategoryId = p.CategoryId
WHERE p.Discontinued = 0
GO

/*  What the packing room works from.
    Status: N new, P being packed.  */
CREATE VIEW sales.vOpenOrders
AS
SELECT o.OrderNo, o.OrderDate, o.RequiredDate, c.CustomerNo, c.Name AS Customer, c.City,
       SUM(l.LineTotal) AS Net
FROM sales.SalesOrder o
    INNER JOIN sales.Customer c ON c.CustomerNo = o.CustomerNo
    INNER JOIN sales.OrderLine l ON l.OrderNo = o.OrderNo
WHERE o.Status IN ('N', 'P')
GROUP BY o.OrderNo, o.OrderDate, o.RequiredDate, c.CustomerNo, c.Name, c.City
GO

CREATE VIEW sales.vCustomerTurnover
AS
SELECT c.CustomerNo, c.Name, YEAR(o.OrderDate) AS [Year],
       COUNT(DISTINCT o.OrderNo) AS Orders, SUM(l.LineTotal) AS Turnover
FROM sales.Customer AS c
    INNER JOIN sales.SalesOrder AS o ON o.CustomerNo = c.CustomerNo
    INNER JOIN sales.OrderLine AS l ON l.OrderNo = o.OrderNo
WHERE o.Status <> 'X'
GROUP BY c.CustomerNo, c.Name, YEAR(o.OrderDate);
GO

CREATE VIEW sales.vFaxJournal
AS
SELECT f.FaxId, f.ReceivedAt, c.Name AS Customer, f.Pages, f.Handled
FROM dbo.FaxQueue f
    INNER JOIN sales.Customer c ON c.CustomerNo = f.CustomerNo
GO

CREATE VIEW stock.vStockOnHand
AS
SELECT m.WarehouseId, w.Name AS Warehouse, pl.ProductId, p.Name AS Product,
       SUM(m.Kilos) AS Kilos
FROM stock.StockMove m
    INNER JOIN stock.Warehouse w ON w.WarehouseId = m.WarehouseId
    INNER JOIN stock.Lot lo ON lo.LotNo = m.LotNo
    INNER JOIN stock.PurchaseLine pl ON pl.PurchaseNo = lo.PurchaseNo AND pl.[LineNo] = lo.[LineNo]
    INNER JOIN dbo.Product p ON p.ProductId = pl.ProductId
GROUP BY m.WarehouseId, w.Name, pl.ProductId, p.Name
HAVING SUM(m.Kilos) <> 0
GO

-- From the tin on the shelf back to the garden.
CREATE VIEW stock.vLotTrace
AS
SELECT lo.LotNo, lo.Garden, lo.HarvestedOn, lo.BestBefore, s.Name AS Supplier,
       p.Sku, p.Name AS Product
FROM stock.Lot lo
    INNER JOIN stock.PurchaseLine pl ON pl.PurchaseNo = lo.PurchaseNo AND pl.[LineNo] = lo.[LineNo]
    INNER JOIN stock.PurchaseOrder po ON po.PurchaseNo = pl.PurchaseNo
    INNER JOIN dbo.Supplier s ON s.SupplierId = po.SupplierId
    INNER JOIN dbo.Product p ON p.ProductId = pl.ProductId
GO

-----------------------------------------------------------------------------
-- Procedures
-----------------------------------------------------------------------------
GO

CREATE PROCEDURE sales.PlaceOrder
    @CustomerNo   int,
    @RequiredDate date = NULL,
    @OrderNo      int OUTPUT
AS
SET NOCOUNT ON;

IF NOT EXISTS (SELECT 1 FROM sales.Customer WHERE CustomerNo = @CustomerNo AND IsActive = 1)
BEGIN
    RAISERROR (N'Customer %d is unknown or closed.', 16, 1, @CustomerNo);
    RETURN 1;
END

INSERT INTO sales.SalesOrder (CustomerNo, RequiredDate)
VALUES (@CustomerNo, @RequiredDate);

SET @OrderNo = SCOPE_IDENTITY();
RETURN 0;
GO

CREATE PROCEDURE sales.ShipOrder
    @OrderNo int,
    @ShippedOn date = NULL
AS
BEGIN
    SET NOCOUNT ON;

    UPDATE sales.SalesOrder
    SET Status = 'S',
        ShippedOn = COALESCE(@ShippedOn, CONVERT(date, SYSDATETIME()))
    WHERE OrderNo = @OrderNo AND Status IN ('N', 'P');

    IF @@ROWCOUNT = 0
        RAISERROR (N'Order %d cannot be shipped.', 16, 1, @OrderNo);
END
GO

CREATE PROCEDURE sales.RenewSubscriptions @ForMonth date
AS
BEGIN
    SET NOCOUNT ON;
    SET XACT_ABORT ON;

    DECLARE @CustomerNo int, @OrderNo int;
    DECLARE Due CURSOR LOCAL FAST_FORWARD FOR
        SELECT DISTINCT CustomerNo
        FROM sales.Subscription
        WHERE StartedOn <= @ForMonth AND (CancelledOn IS NULL OR CancelledOn > @ForMonth);

    BEGIN TRANSACTION;
    OPEN Due;
    FETCH NEXT FROM Due INTO @CustomerNo;
    WHILE @@FETCH_STATUS = 0
    BEGIN
        EXEC sales.PlaceOrder @CustomerNo = @CustomerNo, @RequiredDate = @ForMonth, @OrderNo = @OrderNo OUTPUT;

        INSERT INTO sales.OrderLine (OrderNo, [LineNo], ProductId, Quantity, UnitPrice)
        SELECT @OrderNo, ROW_NUMBER() OVER (ORDER BY s.ProductId), s.ProductId, s.Tins, p.ListPrice
        FROM sales.Subscription s
            INNER JOIN dbo.Product p ON p.ProductId = s.ProductId
        WHERE s.CustomerNo = @CustomerNo
            AND s.StartedOn <= @ForMonth AND (s.CancelledOn IS NULL OR s.CancelledOn > @ForMonth);

        FETCH NEXT FROM Due INTO @CustomerNo;
    END
    CLOSE Due;
    DEALLOCATE Due;
    COMMIT TRANSACTION;
END
GO

CREATE PROCEDURE stock.ReceiveLot
    @LotNo       varchar(16),
    @PurchaseNo  int,
    @LineNo      smallint,
    @BestBefore  date,
    @WarehouseId tinyint,
    @Kilos       decimal(9, 3)
AS
BEGIN
    SET NOCOUNT ON;
    BEGIN TRY
        BEGIN TRANSACTION;
        INSERT INTO stock.Lot (LotNo, PurchaseNo, [LineNo], BestBefore)
        VALUES (@LotNo, @PurchaseNo, @LineNo, @BestBefore);
        INSERT INTO stock.StockMove (LotNo, WarehouseId, Kilos, Kind)
        VALUES (@LotNo, @WarehouseId, @Kilos, 'IN');
        COMMIT TRANSACTION;
    END TRY
    BEGIN CATCH
        IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION;
        THROW;
    END CATCH
END
GO

-- Both halves of a transfer carry the same time stamp.
CREATE PROCEDURE stock.TransferLot
    @LotNo varchar(16), @From tinyint, @To tinyint, @Kilos decimal(9, 3)
AS
BEGIN
    SET NOCOUNT ON;
    DECLARE @Now datetime = GETDATE();
    INSERT INTO stock.StockMove (MovedAt, LotNo, WarehouseId, Kilos, Kind)
    VALUES (@Now, @LotNo, @From, -@Kilos, 'TRF'),
           (@Now, @LotNo, @To, @Kilos, 'TRF');
END
GO

create procedure dbo.SearchProducts @Text nvarchar(80)
as
begin
    set nocount on;
    select ProductId, Sku, Name, ListPrice
    from dbo.Product
    where Name like N'%' + @Text + N'%' or Sku like @Text + '%'
    order by Name;
end
GO

CREATE PROCEDURE dbo.PurgeFaxQueue
    @OlderThanDays int = 60
AS
SET NOCOUNT ON;
DELETE FROM dbo.FaxQueue
WHERE Handled = 1 AND ReceivedAt < DATEADD(day, -@OlderThanDays, GETDATE());
GO

/* ---------------------------------------------------------------------------
   Turnover and tins by category and month of one year, as the board wants it:
   a line a category, a column a month, and a total line at the end.

   Cancelled orders (status X) never count. A year without orders gives the
   total line alone, with zeros.
   --------------------------------------------------------------------------- */
CREATE PROCEDURE sales.MonthlyReport
    @Year        int,
    @CountryCode char(2) = NULL,   -- NULL: customers of all countries
    @CategoryId  smallint = NULL   -- NULL: all categories
AS
BEGIN
    SET NOCOUNT ON;

    IF @Year IS NULL OR @Year NOT BETWEEN 1990 AND 2100
    BEGIN
        RAISERROR (N'The year must lie between 1990 and 2100.', 16, 1);
        RETURN 1;
    END

    CREATE TABLE #Lines
    (
        CategoryId smallint     NOT NULL,
        Category   nvarchar(40) NOT NULL,
        [Month]    tinyint      NOT NULL,
        Tins       int          NOT NULL,
        Net        money        NOT NULL
    );

    INSERT INTO #Lines (CategoryId, Category, [Month], Tins, Net)
    SELECT c.CategoryId, c.Name, MONTH(o.OrderDate), SUM(l.Quantity), SUM(l.LineTotal)
    FROM sales.SalesOrder o
        INNER JOIN sales.OrderLine l ON l.OrderNo = o.OrderNo
        INNER JOIN sales.Customer cu ON cu.CustomerNo = o.CustomerNo
        INNER JOIN dbo.Product p ON p.ProductId = l.ProductId
        INNER JOIN dbo.Category c ON c.CategoryId = p.CategoryId
    WHERE o.OrderDate >= DATEFROMPARTS(@Year, 1, 1)
        AND o.OrderDate < DATEFROMPARTS(@Year + 1, 1, 1)
        AND o.Status <> 'X'
        AND (@CountryCode IS NULL OR cu.CountryCode = @CountryCode)
        AND (@CategoryId IS NULL OR p.CategoryId = @CategoryId)
    GROUP BY c.CategoryId, c.Name, MONTH(o.OrderDate);

    -- One line a category.
    SELECT Category,
           SUM(CASE WHEN [Month] =  1 THEN Net  ELSE 0 END) AS [Jan net],
           SUM(CASE WHEN [Month] =  1 THEN Tins ELSE 0 END) AS [Jan tins],
           SUM(CASE WHEN [Month] =  2 THEN Net  ELSE 0 END) AS [Feb net],
           SUM(CASE WHEN [Month] =  2 THEN Tins ELSE 0 END) AS [Feb tins],
           SUM(CASE WHEN [Month] =  3 THEN Net  ELSE 0 END) AS [Mar net],
           SUM(CASE WHEN [Month] =  3 THEN Tins ELSE 0 END) AS [Mar tins],
           SUM(CASE WHEN [Month] =  4 THEN Net  ELSE 0 END) AS [Apr net],
           SUM(CASE WHEN [Month] =  4 THEN Tins ELSE 0 END) AS [Apr tins],
           SUM(CASE WHEN [Month] =  5 THEN Net  ELSE 0 END) AS [May net],
           SUM(CASE WHEN [Month] =  5 THEN Tins ELSE 0 END) AS [May tins],
           SUM(CASE WHEN [Month] =  6 THEN Net  ELSE 0 END) AS [Jun net],
           SUM(CASE WHEN [Month] =  6 THEN Tins ELSE 0 END) AS [Jun tins],
           SUM(CASE WHEN [Month] =  7 THEN Net  ELSE 0 END) AS [Jul net],
           SUM(CASE WHEN [Month] =  7 THEN Tins ELSE 0 END) AS [Jul tins],
           SUM(CASE WHEN [Month] =  8 THEN Net  ELSE 0 END) AS [Aug net],
           SUM(CASE WHEN [Month] =  8 THEN Tins ELSE 0 END) AS [Aug tins],
           SUM(CASE WHEN [Month] =  9 THEN Net  ELSE 0 END) AS [Sep net],
           SUM(CASE WHEN [Month] =  9 THEN Tins ELSE 0 END) AS [Sep tins],
           SUM(CASE WHEN [Month] = 10 THEN Net  ELSE 0 END) AS [Oct net],
           SUM(CASE WHEN [Month] = 10 THEN Tins ELSE 0 END) AS [Oct tins],
           SUM(CASE WHEN [Month] = 11 THEN Net  ELSE 0 END) AS [Nov net],
           SUM(CASE WHEN [Month] = 11 THEN Tins ELSE 0 END) AS [Nov tins],
           SUM(CASE WHEN [Month] = 12 THEN Net  ELSE 0 END) AS [Dec net],
           SUM(CASE WHEN [Month] = 12 THEN Tins ELSE 0 END) AS [Dec tins],
           SUM(Net) AS [Year net], SUM(Tins) AS [Year tins]
    FROM #Lines
    GROUP BY CategoryId, Category

    UNION ALL

    -- The total line. COALESCE, since there may be no line at all.
    SELECT N'Total',
           COALESCE(SUM(CASE WHEN [Month] =  1 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  1 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  2 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  2 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  3 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  3 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  4 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  4 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  5 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  5 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  6 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  6 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  7 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  7 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  8 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  8 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  9 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] =  9 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] = 10 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] = 10 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] = 11 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] = 11 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] = 12 THEN Net  ELSE 0 END), 0),
           COALESCE(SUM(CASE WHEN [Month] = 12 THEN Tins ELSE 0 END), 0),
           COALESCE(SUM(Net), 0), COALESCE(SUM(Tins), 0)
    FROM #Lines;

    RETURN 0;
END
GO

-----------------------------------------------------------------------------
-- Triggers
-----------------------------------------------------------------------------
GO

CREATE TRIGGER sales.trSalesOrder_Log ON sales.SalesOrder
AFTER UPDATE
AS
BEGIN
    SET NOCOUNT ON;
    INSERT INTO sales.ChangeLog (OrderNo, What)
    SELECT i.OrderNo, N'Status ' + d.Status + N' -> ' + i.Status
    FROM inserted i
        INNER JOIN deleted d ON d.OrderNo = i.OrderNo
    WHERE i.Status <> d.Status;
END
GO

CREATE TRIGGER sales.trPayment_CloseOrder ON sales.Payment
FOR INSERT
AS
UPDATE o
SET Remarks = N'Paid in full'
FROM sales.SalesOrder o
    INNER JOIN inserted i ON i.OrderNo = o.OrderNo
WHERE o.Remarks IS NULL
    AND (SELECT SUM(p.Amount) FROM sales.Payment p WHERE p.OrderNo = o.OrderNo)
        >= (SELECT SUM(l.LineTotal) FROM sales.OrderLine l WHERE l.OrderNo = o.OrderNo);
GO

CREATE TRIGGER stock.trStockMove_NoDelete ON stock.StockMove
INSTEAD OF DELETE
AS
BEGIN
    SET NOCOUNT ON;
    RAISERROR (N'Stock moves are never deleted: book an ADJ move.', 16, 1);
    ROLLBACK TRANSACTION;
END
GO

CREATE TRIGGER dbo.trProduct_Price ON dbo.Product
AFTER UPDATE
AS
IF UPDATE(ListPrice)
BEGIN
    SET NOCOUNT ON;
    UPDATE pl
    SET ValidTo = CONVERT(date, GETDATE())
    FROM sales.[Price List] pl
        INNER JOIN inserted i ON i.ProductId = pl.ProductId
    WHERE pl.ValidTo IS NULL;

    INSERT INTO sales.[Price List] (ProductId, ValidFrom, [Net Price])
    SELECT ProductId, DATEADD(day, 1, CONVERT(date, GETDATE())), ListPrice
    FROM inserted;
END
GO

-----------------------------------------------------------------------------
-- Permissions
-----------------------------------------------------------------------------

GRANT SELECT ON dbo.Product TO sales_clerk;
GRANT SELECT ON dbo.Product TO stock_clerk;
GRANT SELECT, INSERT, UPDATE ON sales.Customer TO sales_clerk;
GRANT SELECT, INSERT, UPDATE ON sales.SalesOrder TO sales_clerk;
GRANT SELECT, INSERT, UPDATE, DELETE ON sales.OrderLine TO sales_clerk;
GRANT SELECT ON sales.Customer (CustomerNo, Name, City) TO stock_clerk;
DENY UPDATE ON sales.Customer (CreditLimit) TO sales_clerk;
GRANT EXECUTE ON sales.PlaceOrder TO sales_clerk;
GRANT EXECUTE ON sales.ShipOrder TO stock_clerk;
GRANT EXECUTE ON OBJECT::stock.ReceiveLot TO stock_clerk;
GRANT EXECUTE ON stock.TransferLot TO stock_clerk WITH GRANT OPTION;
GRANT SELECT ON SCHEMA::stock TO stock_clerk;
GRANT SELECT ON sales.ChangeLog TO auditor;
GRANT SELECT ON stock.ChangeLog TO auditor;
DENY DELETE ON sales.Payment TO public;
GO
