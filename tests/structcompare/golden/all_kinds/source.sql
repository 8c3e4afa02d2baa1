CREATE TABLE dbo.Customers (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_Customers PRIMARY KEY CLUSTERED,
    Name nvarchar(50) NOT NULL,
    City varchar(30) NULL CONSTRAINT DF_Customers_City DEFAULT ('Oslo')
)
GO
CREATE TABLE dbo.Orders (
    ID int NOT NULL CONSTRAINT PK_Orders PRIMARY KEY CLUSTERED,
    CustomerID int NOT NULL CONSTRAINT FK_Orders_Customers REFERENCES dbo.Customers (ID),
    Total decimal(10,2) NULL
)
GO
CREATE TABLE dbo.Archive (A int NULL)
GO
CREATE PROCEDURE dbo.GetOrders AS
SELECT ID
FROM dbo.Orders
ORDER BY ID
GO
CREATE PROCEDURE dbo.CountOrders AS SELECT COUNT(*) FROM dbo.Orders
GO
CREATE PROCEDURE dbo.DropOrders AS DELETE FROM dbo.Orders
GO
CREATE PROCEDURE dbo.ListCities AS SELECT City FROM dbo.Customers
GO
CREATE FUNCTION dbo.Twice (@n int) RETURNS int AS BEGIN RETURN @n * 2 END
GO
CREATE VIEW dbo.OpenOrders AS SELECT ID FROM dbo.Orders
GO
CREATE VIEW dbo.Cities AS SELECT City FROM dbo.Customers
GO
CREATE TRIGGER dbo.OrdersChanged ON dbo.Orders AFTER UPDATE AS PRINT 'changed'
GO
